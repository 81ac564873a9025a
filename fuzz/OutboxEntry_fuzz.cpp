// Fuzzes: outbox
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Require.h"
#include "outbox/OutboxEntry.h"

namespace {

// What was read is written and read again, to the same bytes: compared as bytes, since no NaN equals itself.
std::string written(const kesu::OutboxEntry& entry) {
  std::vector<kesu::DefaultsChange> changes;
  for (const kesu::OutboxEntry::Change& change : entry.changes) {
    const std::string* suffix = change.value.text();
    changes.push_back({change.kind, change.key, change.value, suffix != nullptr ? *suffix : std::string_view()});
  }
  std::string bytes;
  kesu::fuzz::require(kesu::appendChanges(bytes, changes) &&
                      (!entry.record || kesu::appendRecord(bytes, *entry.record, entry.record->entries)));
  return bytes;
}

std::string written(const kesu::Dictionary& dictionary) {
  std::string bytes;
  kesu::fuzz::require(kesu::appendDictionary(bytes, dictionary));
  return bytes;
}

template <typename Read>
void readAndWrite(std::string_view bytes, const Read& read) {
  if (const auto first = read(bytes)) {
    const std::string once = written(*first);
    const auto second = read(once);
    kesu::fuzz::require(second && written(*second) == once);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  readAndWrite(bytes, kesu::readEntry);
  readAndWrite(bytes, kesu::readDictionary);
  return 0;
}
