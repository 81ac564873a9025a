// Fuzzes: platform/linux/outbox
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Require.h"
#include "platform/linux/outbox/LogSegment.h"

namespace {

using kesu::fuzz::require;

// Reads the whole segment. What is found lies within it, in order.
void readSegment(std::string_view segment) {
  kesu::SegmentReader reader(segment);
  std::size_t end = 0;
  kesu::AppendLog::Sequence last = 0;
  while (const auto item = reader.next()) {
    require(item->offset >= end && item->bytes.data() + item->bytes.size() <= segment.data() + segment.size());
    require(item->sequence >= last);
    end = item->offset + kesu::entryBytes(item->bytes.size());
    last = item->sequence;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  readSegment(bytes);
  // Behind a header that is valid, which chance does not find.
  const kesu::SegmentHeaderBytes header = kesu::encodeSegmentHeader({1, 1, 1});
  static std::string segment;  // One for all inputs: the sanitizer keeps what is freed.
  segment.assign(header.begin(), header.end()).append(bytes);
  readSegment(segment);
  return 0;
}
