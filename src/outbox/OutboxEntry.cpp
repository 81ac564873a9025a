#include "outbox/OutboxEntry.h"

#include <bit>
#include <cstring>
#include <limits>
#include <utility>

namespace kesu {
namespace {

constexpr std::uint8_t kVersion = 1;
constexpr std::uint8_t kHasContext = 1;

// The tags of values are those of ValueKind, which therefore may grow at its end only.
static_assert(static_cast<int>(ValueKind::Dictionary) == 8);

class Writer {
 public:
  explicit Writer(std::string& out) : out_(out) {}

  void byte(std::uint8_t value) { out_.push_back(static_cast<char>(value)); }

  void number(std::uint64_t value) {
    char bytes[10];
    std::size_t count = 0;
    for (; value >= 0x80; value >>= 7) {
      bytes[count++] = static_cast<char>(value | 0x80);
    }
    bytes[count++] = static_cast<char>(value);
    out_.append(bytes, count);
  }

  void word(std::uint64_t value) {
    char bytes[sizeof value];
    for (char& byte : bytes) {
      byte = static_cast<char>(value);
      value >>= 8;
    }
    out_.append(bytes, sizeof bytes);
  }

  void text(std::string_view text) {
    number(text.size());
    out_.append(text);
  }

  bool value(const Value& value, std::size_t depth);
  bool dictionary(const Dictionary& dictionary, std::size_t depth);

 private:
  std::string& out_;
};

bool Writer::value(const Value& value, std::size_t depth) {
  byte(static_cast<std::uint8_t>(value.kind()));
  switch (value.kind()) {
    case ValueKind::Null:
      return true;
    case ValueKind::Bool:
      byte(*value.boolean() ? 1 : 0);
      return true;
    case ValueKind::Integer:
      word(static_cast<std::uint64_t>(*value.integer()));
      return true;
    case ValueKind::Real:
      word(std::bit_cast<std::uint64_t>(*value.real()));
      return true;
    case ValueKind::Text:
      text(*value.text());
      return true;
    case ValueKind::Data:
      text({reinterpret_cast<const char*>(value.data()->data()), value.data()->size()});
      return true;
    case ValueKind::Date:
      word(std::bit_cast<std::uint64_t>(value.date()->secondsSince1970));
      return true;
    case ValueKind::Array:
      number(value.array()->size());
      for (const Value& element : *value.array()) {
        if (depth == kLoggedDepthLimit || !this->value(element, depth + 1)) {
          return false;
        }
      }
      return true;
    case ValueKind::Dictionary:
      return dictionary(*value.dictionary(), depth);
  }
  return false;
}

bool Writer::dictionary(const Dictionary& dictionary, std::size_t depth) {
  number(dictionary.size());
  for (const auto& [key, content] : dictionary) {
    text(key);
    if (depth == kLoggedDepthLimit || !value(content, depth + 1)) {
      return false;
    }
  }
  return true;
}

/// Reads what a Writer wrote. After a failure every operation fails.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  bool isWhole() const { return !hasFailed_ && bytes_.empty(); }

  std::uint8_t byte() { return static_cast<std::uint8_t>(taken(1).front()); }

  std::uint64_t number() {
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
      const std::uint64_t bits = byte();
      value |= (bits & 0x7f) << shift;
      if ((bits & 0x80) == 0) {
        return value;
      }
    }
    hasFailed_ = true;
    return 0;
  }

  std::uint64_t word() {
    const std::string_view bytes = taken(sizeof(std::uint64_t));
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) {
      value = value << 8 | static_cast<std::uint8_t>(bytes[i]);
    }
    return value;
  }

  double real() { return std::bit_cast<double>(word()); }

  std::string_view text() {
    const std::uint64_t size = number();
    return size == 0 ? std::string_view() : taken(size);
  }

  std::size_t count() {
    const std::uint64_t count = number();
    hasFailed_ = hasFailed_ || count > bytes_.size();  // Each takes a byte at least.
    return hasFailed_ ? 0 : static_cast<std::size_t>(count);
  }

  Value value(std::size_t depth);
  Dictionary dictionary(std::size_t depth);

  bool hasFailed() const { return hasFailed_; }
  void fail() { hasFailed_ = true; }

 private:
  /// Never empty: zeros stand for what is missing, so that callers check once at the end.
  std::string_view taken(std::uint64_t size) {
    static constexpr char kZeros[sizeof(std::uint64_t)] = {};
    if (hasFailed_ || size > bytes_.size()) {
      hasFailed_ = true;
      return {kZeros, sizeof kZeros};
    }
    const std::string_view part = bytes_.substr(0, static_cast<std::size_t>(size));
    bytes_.remove_prefix(part.size());
    return part;
  }

  std::string_view bytes_;
  bool hasFailed_ = false;
};

Value Reader::value(std::size_t depth) {
  if (depth > kLoggedDepthLimit) {
    fail();
    return Null{};
  }
  const std::uint8_t tag = byte();
  if (tag > static_cast<std::uint8_t>(ValueKind::Dictionary)) {
    fail();
    return Null{};
  }
  switch (static_cast<ValueKind>(tag)) {
    case ValueKind::Null:
      return Null{};
    case ValueKind::Bool:
      return byte() != 0;
    case ValueKind::Integer:
      return static_cast<std::int64_t>(word());
    case ValueKind::Real:
      return real();
    case ValueKind::Text:
      return text();
    case ValueKind::Data: {
      const std::string_view bytes = text();
      return Data(bytes.begin(), bytes.end());
    }
    case ValueKind::Date:
      return Date{real()};
    case ValueKind::Array: {
      Array array;
      for (std::size_t left = count(); left > 0 && !hasFailed_; --left) {
        array.push_back(value(depth + 1));
      }
      return array;
    }
    case ValueKind::Dictionary:
      return dictionary(depth);
  }
  return Null{};
}

Dictionary Reader::dictionary(std::size_t depth) {
  // What completing a record adds: one allocation instead of two.
  constexpr std::size_t kUsualColumns = 20;
  Dictionary read;
  const std::size_t size = count();
  read.reserve(depth == 0 ? size + kUsualColumns : size);
  for (std::size_t left = size; left > 0 && !hasFailed_; --left) {
    const std::string_view key = text();
    read.set(key, value(depth + 1));
  }
  return read;
}

bool isKind(std::uint8_t kind) {
  return kind <= static_cast<std::uint8_t>(RecordKind::State);
}

PendingRecord readRecord(Reader& reader) {
  PendingRecord record;
  const std::uint8_t kind = reader.byte();
  if (!isKind(kind)) {
    reader.fail();
  }
  record.kind = isKind(kind) ? static_cast<RecordKind>(kind) : RecordKind::Complete;
  record.destination = static_cast<char>(reader.byte());
  record.detail = static_cast<char>(reader.byte());
  record.hasContext = (reader.byte() & kHasContext) != 0;
  record.moment = reader.real();
  for (std::uint8_t& byte : record.identifier) {
    byte = reader.byte();
  }
  record.entries = reader.dictionary(0);
  return record;
}

}  // namespace

bool appendChanges(std::string& bytes, std::span<const DefaultsChange> changes) {
  Writer writer(bytes);
  writer.byte(kVersion);
  writer.number(changes.size());
  for (const DefaultsChange& change : changes) {
    writer.byte(static_cast<std::uint8_t>(change.kind));
    writer.text(change.key);
    if (change.kind == DefaultsChange::Kind::Append) {
      writer.byte(static_cast<std::uint8_t>(ValueKind::Text));
      writer.text(change.suffix);
    } else if (!writer.value(change.value, 0)) {
      return false;
    }
  }
  return true;
}

bool appendRecord(std::string& bytes, const PendingRecord& frame, const Dictionary& entries,
                  const std::optional<Replacement>& replacement) {
  Writer writer(bytes);
  writer.byte(static_cast<std::uint8_t>(frame.kind));
  writer.byte(static_cast<std::uint8_t>(frame.destination));
  writer.byte(static_cast<std::uint8_t>(frame.detail));
  writer.byte(frame.hasContext ? kHasContext : 0);
  writer.word(std::bit_cast<std::uint64_t>(frame.moment));
  bytes.append(reinterpret_cast<const char*>(frame.identifier.data()), frame.identifier.size());
  if (!replacement) {
    return writer.dictionary(entries, 0);
  }
  const bool isThere = entries.contains(replacement->key);
  const bool isKept = replacement->value != nullptr;
  writer.number(entries.size() - (isThere ? 1 : 0) + (isKept ? 1 : 0));
  bool isPending = isKept;
  for (const auto& [key, content] : entries) {
    const bool isReplaced = isThere && key == replacement->key;
    if (isReplaced && !isKept) {
      continue;
    }
    isPending = isPending && !isReplaced;
    writer.text(key);
    if (!writer.value(isReplaced ? *replacement->value : content, 1)) {
      return false;
    }
  }
  if (isPending) {
    writer.text(replacement->key);
  }
  return !isPending || writer.value(*replacement->value, 1);
}

bool appendDictionary(std::string& bytes, const Dictionary& dictionary) {
  return Writer(bytes).dictionary(dictionary, 0);
}

std::optional<OutboxEntry> readEntry(std::string_view bytes) {
  Reader reader(bytes);
  if (reader.byte() != kVersion) {
    return std::nullopt;
  }
  OutboxEntry entry;
  for (std::size_t left = reader.count(); left > 0 && !reader.hasFailed(); --left) {
    const std::uint8_t kind = reader.byte();
    if (kind > static_cast<std::uint8_t>(DefaultsChange::Kind::Remove)) {
      return std::nullopt;
    }
    std::string key(reader.text());
    entry.changes.push_back({static_cast<DefaultsChange::Kind>(kind), std::move(key), reader.value(0)});
  }
  if (!reader.isWhole()) {
    entry.record = readRecord(reader);
  }
  return reader.isWhole() ? std::optional(std::move(entry)) : std::nullopt;
}

std::optional<Dictionary> readDictionary(std::string_view bytes) {
  Reader reader(bytes);
  Dictionary read = reader.dictionary(0);
  return reader.isWhole() ? std::optional(std::move(read)) : std::nullopt;
}

}  // namespace kesu
