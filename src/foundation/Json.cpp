#include "foundation/Json.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <numeric>
#include <utility>

#include "foundation/Digest.h"
#include "foundation/NumberText.h"
#include "foundation/Text.h"

namespace kesu {
namespace {

// Bytes in a word, one lane each.
constexpr std::uint64_t kEachLane = 0x0101010101010101;
constexpr std::uint64_t kHighBits = 0x8080808080808080;

constexpr std::uint64_t zeroLanes(std::uint64_t word) {
  return (word - kEachLane) & ~word & kHighBits;
}

// Whether JSON escapes one of the eight bytes: a quote, a backslash, a control character.
constexpr bool hasEscaped(std::uint64_t word) {
  const std::uint64_t control = (word - kEachLane * 0x20) & ~word & kHighBits;
  return (control | zeroLanes(word ^ kEachLane * '"') | zeroLanes(word ^ kEachLane * '\\')) != 0;
}

constexpr bool isEscaped(char character) {
  return static_cast<std::uint8_t>(character) < 0x20 || character == '"' || character == '\\';
}

// How many characters at the front are written as they are. `bits` collects those of the bytes that were looked at.
std::size_t plainLength(std::string_view text, std::uint64_t& bits) {
  std::size_t length = 0;
  std::uint64_t word = 0;
  for (; text.size() - length >= sizeof word; length += sizeof word) {
    std::memcpy(&word, text.data() + length, sizeof word);
    bits |= word;
    if (hasEscaped(word)) {
      break;
    }
  }
  for (; length < text.size() && !isEscaped(text[length]); ++length) {
    bits |= static_cast<std::uint8_t>(text[length]);
  }
  return length;
}

// Enough for what most entries take, so that most texts need one allocation.
std::size_t usualLength(std::string_view key, const Value& value) {
  constexpr std::size_t kPunctuation = 6;
  constexpr std::size_t kUsualNumber = 20;
  const std::string* text = value.text();
  return key.size() + kPunctuation + (text != nullptr ? text->size() : kUsualNumber);
}

std::size_t usualLength(const Dictionary& dictionary) {
  return std::accumulate(dictionary.begin(), dictionary.end(), std::size_t{2},
                         [](std::size_t sum, const auto& entry) { return sum + usualLength(entry.key, entry.value); });
}

std::size_t usualLength(std::span<const JsonField> fields) {
  return std::accumulate(fields.begin(), fields.end(), std::size_t{2}, [](std::size_t sum, const JsonField& field) {
    return sum + usualLength(field.key, *field.value);
  });
}

// Writes JSON. By hand: copying whole runs of plain characters takes a third of the time of a general writer.
class JsonWriter {
 public:
  JsonWriter(std::string& out, std::size_t usualLength) : out_(out) { out_.resize(usualLength); }

  JsonStatus value(const Value& value, std::size_t depth);
  JsonStatus dictionary(const Dictionary& dictionary, std::size_t depth);
  JsonStatus object(std::span<const JsonField> fields);

  void finish() { out_.resize(used_); }

 private:
  JsonStatus array(const Array& array, std::size_t depth);
  JsonStatus entry(char separator, std::string_view key, const Value& content, std::size_t depth);
  JsonStatus integer(std::int64_t number);
  JsonStatus real(double number);
  JsonStatus text(std::string_view text);
  JsonStatus literal(std::string_view literal);
  void character(char character) { *room(1) = character, ++used_; }
  void escape(char character);

  // Where the next `count` characters go; the caller adds them to used_.
  char* room(std::size_t count) {
    if (out_.size() - used_ < count) {
      out_.resize(std::max(out_.size() * 2, used_ + count));
    }
    return out_.data() + used_;
  }

  std::string& out_;  // Longer than what is written, until finish().
  std::size_t used_ = 0;
};

JsonStatus JsonWriter::value(const Value& value, std::size_t depth) {
  switch (value.kind()) {
    case Value::Kind::Null:
      return literal("null");
    case Value::Kind::Bool:
      return literal(*value.boolean() ? "true" : "false");
    case Value::Kind::Integer:
      return integer(*value.integer());
    case Value::Kind::Real:
      return real(*value.real());
    case Value::Kind::Text:
      return text(*value.text());
    case Value::Kind::Data:
    case Value::Kind::Date:
      return JsonStatus::NotValid;
    case Value::Kind::Array:
      return array(*value.array(), depth);
    case Value::Kind::Dictionary:
      return dictionary(*value.dictionary(), depth);
  }
  return JsonStatus::NotValid;
}

JsonStatus JsonWriter::entry(char separator, std::string_view key, const Value& content, std::size_t depth) {
  character(separator);
  const JsonStatus status = text(key);
  character(':');
  return status == JsonStatus::Ok ? value(content, depth + 1) : status;
}

JsonStatus JsonWriter::dictionary(const Dictionary& dictionary, std::size_t depth) {
  if (depth >= kJsonDepthLimit) {
    return JsonStatus::TooDeep;
  }
  char separator = '{';
  for (const auto& [key, content] : dictionary) {
    const JsonStatus status = entry(std::exchange(separator, ','), key, content, depth);
    if (status != JsonStatus::Ok) {
      return status;
    }
  }
  return literal(dictionary.empty() ? "{}" : "}");
}

JsonStatus JsonWriter::object(std::span<const JsonField> fields) {
  char separator = '{';
  for (const auto& [key, content] : fields) {
    const JsonStatus status = entry(std::exchange(separator, ','), key, *content, 0);
    if (status != JsonStatus::Ok) {
      return status;
    }
  }
  return literal(fields.empty() ? "{}" : "}");
}

JsonStatus JsonWriter::array(const Array& array, std::size_t depth) {
  if (depth >= kJsonDepthLimit) {
    return JsonStatus::TooDeep;
  }
  char separator = '[';
  for (const Value& content : array) {
    character(std::exchange(separator, ','));
    const JsonStatus status = value(content, depth + 1);
    if (status != JsonStatus::Ok) {
      return status;
    }
  }
  return literal(array.empty() ? "[]" : "]");
}

JsonStatus JsonWriter::integer(std::int64_t number) {
  constexpr std::size_t kLongest = 20;
  char* const begin = room(kLongest);
  used_ += static_cast<std::size_t>(std::to_chars(begin, begin + kLongest, number).ptr - begin);
  return JsonStatus::Ok;
}

JsonStatus JsonWriter::real(double number) {
  return std::isfinite(number) ? literal(shortestReal(number)) : JsonStatus::NotValid;
}

JsonStatus JsonWriter::text(std::string_view text) {
  std::uint64_t bits = 0;
  std::string_view rest = text;
  character('"');
  while (true) {
    const std::size_t plain = plainLength(rest, bits);
    literal(rest.substr(0, plain));
    if (plain == rest.size()) {
      break;
    }
    escape(rest[plain]);
    rest.remove_prefix(plain + 1);
  }
  character('"');
  return (bits & kHighBits) == 0 || isValidUtf8(text) ? JsonStatus::Ok : JsonStatus::BadText;
}

void JsonWriter::escape(char character) {
  constexpr std::string_view kShort = "\"\\\b\f\n\r\t";
  constexpr std::string_view kLetters = "\"\\bfnrt";
  const std::size_t found = kShort.find(character);
  if (found != std::string_view::npos) {
    literal(std::string{'\\', kLetters[found]});
  } else {
    const auto byte = static_cast<std::uint8_t>(character);
    literal("\\u00");
    literal(hexLower({&byte, 1}));
  }
}

JsonStatus JsonWriter::literal(std::string_view literal) {
  literal.copy(room(literal.size()), literal.size());
  used_ += literal.size();
  return JsonStatus::Ok;
}

template <typename Write>
JsonStatus writeWhole(std::string& out, std::size_t usualLength, Write writeRoot) {
  JsonWriter writer(out, usualLength);
  const JsonStatus status = writeRoot(writer);
  writer.finish();
  if (status != JsonStatus::Ok) {
    out.clear();
  }
  return status;
}

constexpr bool isHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}

constexpr bool isLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

void appendUtf8(std::string& out, char32_t point) {
  const auto byte = [point](char32_t lead, int shift) { return static_cast<char>(lead | (point >> shift)); };
  const auto follower = [point](int shift) { return static_cast<char>(0x80 | ((point >> shift) & 0x3F)); };
  if (point < 0x80) {
    out.push_back(byte(0, 0));
  } else if (point < 0x800) {
    out.append({byte(0xC0, 6), follower(0)});
  } else if (point < 0x10000) {
    out.append({byte(0xE0, 12), follower(6), follower(0)});
  } else {
    out.append({byte(0xF0, 18), follower(12), follower(6), follower(0)});
  }
}

// Reads a text that is known to be UTF-8, from front to back. Whoever returns nothing or false ends the reading.
// Written by hand: the readers at hand either throw or rely on undefined pointer arithmetic.
class JsonReader {
 public:
  explicit JsonReader(std::string_view text) : rest_(text) {}

  std::optional<Value> whole() {
    std::optional<Value> root = value(0);
    skipSpace();
    return rest_.empty() ? std::move(root) : std::nullopt;
  }

 private:
  std::optional<Value> value(std::size_t depth);
  std::optional<Value> array(std::size_t depth);
  std::optional<Value> dictionary(std::size_t depth);
  std::optional<Value> literal(std::string_view name, Value meaning);
  std::optional<Value> number();
  std::optional<std::string> text();
  bool escape(std::string& out);
  bool unicodeEscape(std::string& out);
  std::optional<char32_t> utf16Unit();
  std::size_t skipDigits(std::size_t position) const;
  std::size_t numberLength(bool& isInteger) const;

  void skipSpace() { rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size())); }
  char next() const { return rest_.empty() ? '\0' : rest_.front(); }

  // Takes the character when it comes next.
  bool take(char expected) {
    const bool isThere = !rest_.empty() && rest_.front() == expected;
    rest_.remove_prefix(isThere ? 1 : 0);
    return isThere;
  }

  std::string_view rest_;
  std::size_t valuesLeft_ = kJsonValuesLimit;
};

std::optional<Value> JsonReader::value(std::size_t depth) {
  if (valuesLeft_ == 0) {
    return std::nullopt;
  }
  --valuesLeft_;
  skipSpace();
  switch (next()) {
    case '{':
      return depth < kJsonDepthLimit ? dictionary(depth) : std::nullopt;
    case '[':
      return depth < kJsonDepthLimit ? array(depth) : std::nullopt;
    case '"':
      return text();
    case 't':
      return literal("true", true);
    case 'f':
      return literal("false", false);
    case 'n':
      return literal("null", Null{});
    default:
      return number();
  }
}

std::optional<Value> JsonReader::array(std::size_t depth) {
  Array array;
  rest_.remove_prefix(1);
  skipSpace();
  if (take(']')) {
    return Value(std::move(array));
  }
  do {
    std::optional<Value> element = value(depth + 1);
    if (!element) {
      return std::nullopt;
    }
    array.push_back(std::move(*element));
    skipSpace();
  } while (take(','));
  return take(']') ? std::optional<Value>(std::move(array)) : std::nullopt;
}

std::optional<Value> JsonReader::dictionary(std::size_t depth) {
  Dictionary dictionary;
  rest_.remove_prefix(1);
  skipSpace();
  if (take('}')) {
    return Value(std::move(dictionary));
  }
  do {
    skipSpace();
    const std::optional<std::string> key = next() == '"' ? text() : std::nullopt;
    skipSpace();
    std::optional<Value> content = key && take(':') ? value(depth + 1) : std::nullopt;
    if (!content) {
      return std::nullopt;
    }
    dictionary.set(*key, std::move(*content));
    skipSpace();
  } while (take(','));
  return take('}') ? std::optional<Value>(std::move(dictionary)) : std::nullopt;
}

std::optional<Value> JsonReader::literal(std::string_view name, Value meaning) {
  if (!rest_.starts_with(name)) {
    return std::nullopt;
  }
  rest_.remove_prefix(name.size());
  return meaning;
}

std::size_t JsonReader::skipDigits(std::size_t position) const {
  while (position < rest_.size() && isDigit(rest_[position])) {
    ++position;
  }
  return position;
}

// The length of the number that comes next by JSON's grammar, which is narrower than that of std::from_chars; or 0.
std::size_t JsonReader::numberLength(bool& isInteger) const {
  const std::size_t first = rest_.starts_with('-') ? 1 : 0;
  std::size_t end = skipDigits(first);
  if (end == first || (rest_[first] == '0' && end > first + 1)) {
    return 0;
  }
  if (end < rest_.size() && rest_[end] == '.') {
    isInteger = false;
    const std::size_t fraction = end + 1;
    end = skipDigits(fraction);
    if (end == fraction) {
      return 0;
    }
  }
  if (end < rest_.size() && (rest_[end] == 'e' || rest_[end] == 'E')) {
    isInteger = false;
    const bool isSigned = end + 1 < rest_.size() && (rest_[end + 1] == '+' || rest_[end + 1] == '-');
    const std::size_t exponent = end + (isSigned ? 2 : 1);
    end = skipDigits(exponent);
    return end == exponent ? 0 : end;
  }
  return end;
}

// Whether a number that no double can hold is too small rather than too large.
bool isTooSmall(std::string_view digits) {
  digits.remove_prefix(digits.starts_with('-') ? 1 : 0);
  const std::size_t mark = digits.find_first_of("eE");
  return mark == std::string_view::npos ? digits.starts_with('0') : digits[mark + 1] == '-';
}

std::optional<Value> JsonReader::number() {
  bool isInteger = true;
  const std::string_view digits = rest_.substr(0, numberLength(isInteger));
  rest_.remove_prefix(digits.size());
  std::int64_t integer = 0;
  if (isInteger && std::from_chars(digits.data(), digits.data() + digits.size(), integer).ec == std::errc()) {
    return integer;
  }
  double real = 0.0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), real);
  if (result.ec == std::errc::result_out_of_range && isTooSmall(digits)) {
    return 0.0;
  }
  return result.ec == std::errc() ? std::optional<Value>(real) : std::nullopt;
}

std::optional<std::string> JsonReader::text() {
  std::string text;
  rest_.remove_prefix(1);
  while (true) {
    std::size_t plain = 0;
    while (plain < rest_.size() && rest_[plain] != '"' && rest_[plain] != '\\' &&
           static_cast<std::uint8_t>(rest_[plain]) >= 0x20) {
      ++plain;
    }
    text.append(rest_.substr(0, plain));
    rest_.remove_prefix(plain);
    if (take('"')) {
      return text;
    }
    if (!take('\\') || !escape(text)) {
      return std::nullopt;
    }
  }
}

bool JsonReader::escape(std::string& out) {
  constexpr std::string_view kLetters = "\"\\/bfnrt";
  constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
  if (take('u')) {
    return unicodeEscape(out);
  }
  const std::size_t found = rest_.empty() ? std::string_view::npos : kLetters.find(rest_.front());
  if (found == std::string_view::npos) {
    return false;
  }
  out.push_back(kMeanings[found]);
  rest_.remove_prefix(1);
  return true;
}

// Half of a surrogate pair is refused: no UTF-8 text can hold it.
bool JsonReader::unicodeEscape(std::string& out) {
  const std::optional<char32_t> first = utf16Unit();
  if (!first || isLowSurrogate(*first)) {
    return false;
  }
  if (!isHighSurrogate(*first)) {
    appendUtf8(out, *first);
    return true;
  }
  const std::optional<char32_t> second = take('\\') && take('u') ? utf16Unit() : std::nullopt;
  if (!second || !isLowSurrogate(*second)) {
    return false;
  }
  appendUtf8(out, 0x10000 + ((*first - 0xD800) << 10) + (*second - 0xDC00));
  return true;
}

std::optional<char32_t> JsonReader::utf16Unit() {
  constexpr std::size_t kDigits = 4;
  const std::string_view digits = rest_.substr(0, kDigits);
  std::uint16_t unit = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), unit, 16);
  if (digits.size() < kDigits || result.ptr != digits.data() + kDigits) {
    return std::nullopt;
  }
  rest_.remove_prefix(kDigits);
  return unit;
}

}  // namespace

JsonStatus writeJson(const Dictionary& dictionary, std::string& out) {
  return writeWhole(out, usualLength(dictionary),
                    [&dictionary](JsonWriter& writer) { return writer.dictionary(dictionary, 0); });
}

JsonStatus writeJson(const Value& value, std::string& out) {
  return writeWhole(out, usualLength({}, value), [&value](JsonWriter& writer) { return writer.value(value, 0); });
}

JsonStatus writeJson(std::span<const JsonField> fields, std::string& out) {
  return writeWhole(out, usualLength(fields), [fields](JsonWriter& writer) { return writer.object(fields); });
}

std::optional<Value> parseJson(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (!isValidUtf8(text)) {
    return std::nullopt;
  }
  text.remove_prefix(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
  return JsonReader(text).whole();
}

}  // namespace kesu
