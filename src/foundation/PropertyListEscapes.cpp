#include "foundation/PropertyListEscapes.h"

#include <charconv>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/CivilTime.h"
#include "foundation/NumberText.h"
#include "foundation/PropertyList.h"

namespace kesu {
namespace {

constexpr std::string_view kIntroducer = "\xEE\x80\x9B";  // U+E01B
constexpr char kDateSign = '@';
constexpr std::size_t kDigits = 4;
constexpr unsigned kIntroducerCode = 0xE01B;
constexpr unsigned kFirstNonCharacter = 0xFFFE;  // The other one is U+FFFF.

struct WideEscape {
  std::string_view utf8;
  unsigned code;
};

constexpr WideEscape kWideEscapes[] = {
    {kIntroducer, kIntroducerCode}, {"\xEF\xBF\xBE", kFirstNonCharacter}, {"\xEF\xBF\xBF", kFirstNonCharacter + 1}};

bool isControl(unsigned code) {
  return code < 0x20 && code != '\t' && code != '\n' && code != '\r';
}

void appendEscape(std::string& out, unsigned code) {
  constexpr std::string_view kHexadecimal = "0123456789abcdef";
  out.append(kIntroducer);
  for (unsigned shift = 4 * kDigits; shift > 0; shift -= 4) {
    out.push_back(kHexadecimal[(code >> (shift - 4)) & 0xFU]);
  }
}

// The escaped character that the text starts with, or null.
const WideEscape* wideEscapeAt(std::string_view text) {
  for (const WideEscape& escape : kWideEscapes) {
    if (text.starts_with(escape.utf8)) {
      return &escape;
    }
  }
  return nullptr;
}

std::string escapedText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const auto byte = static_cast<unsigned char>(text.front());
    const WideEscape* wide = byte < 0x80 ? nullptr : wideEscapeAt(text);
    if (wide != nullptr) {
      appendEscape(out, wide->code);
    } else if (isControl(byte)) {
      appendEscape(out, byte);
    } else {
      out.push_back(text.front());
    }
    text.remove_prefix(wide != nullptr ? wide->utf8.size() : 1);
  }
  return out;
}

// Appends the character of one escape. False when none is spelled that way.
bool appendEscaped(std::string& out, std::string_view digits) {
  unsigned code = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
  if (digits.size() != kDigits || result.ec != std::errc() || result.ptr != digits.data() + digits.size()) {
    return false;
  }
  for (const WideEscape& escape : kWideEscapes) {
    if (escape.code == code) {
      out.append(escape.utf8);
      return true;
    }
  }
  out.push_back(static_cast<char>(code));
  return isControl(code);
}

std::optional<std::string> unescapedText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (;;) {
    const std::size_t escape = text.find(kIntroducer);
    out.append(text.substr(0, escape));
    if (escape == std::string_view::npos) {
      return out;
    }
    text.remove_prefix(escape + kIntroducer.size());
    if (!appendEscaped(out, text.substr(0, kDigits))) {
      return std::nullopt;
    }
    text.remove_prefix(kDigits);
  }
}

std::string escapedDate(Date date) {
  std::string out(kIntroducer);
  out.push_back(kDateSign);
  appendShortestReal(out, date.secondsSince1970);
  return out;
}

// How the texts of one direction are spelled.
struct Spelling {
  std::optional<std::string> (*key)(std::string_view text);
  std::optional<Value> (*leaf)(const Value& value);
};

std::optional<std::string> escapedKey(std::string_view text) {
  return escapedText(text);
}

std::optional<Value> escapedLeaf(const Value& value) {
  if (const std::string* text = value.text()) {
    return escapedText(*text);
  }
  const Date* date = value.date();
  return date == nullptr || civilTime(*date) ? value : Value(escapedDate(*date));
}

std::optional<Value> unescapedLeaf(const Value& value) {
  if (value.text() == nullptr) {
    return value;
  }
  std::string_view text = *value.text();
  if (text.starts_with(kIntroducer) && text.substr(kIntroducer.size()).starts_with(kDateSign)) {
    text.remove_prefix(kIntroducer.size() + 1);
    Date date;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), date.secondsSince1970);
    const bool isWhole = result.ec == std::errc() && result.ptr == text.data() + text.size();
    return isWhole ? std::optional<Value>(date) : std::nullopt;
  }
  std::optional<std::string> plain = unescapedText(text);
  return plain ? std::optional<Value>(std::move(*plain)) : std::nullopt;
}

std::optional<Value> respelled(const Value& value, const Spelling& spelling, std::size_t depth) {
  const Array* array = value.array();
  const Dictionary* dictionary = value.dictionary();
  if (array == nullptr && dictionary == nullptr) {
    return spelling.leaf(value);
  }
  if (depth >= kPropertyListDepthLimit) {
    return std::nullopt;
  }
  Array elements;
  for (std::size_t i = 0; array != nullptr && i < array->size(); ++i) {
    std::optional<Value> element = respelled((*array)[i], spelling, depth + 1);
    if (!element) {
      return std::nullopt;
    }
    elements.push_back(std::move(*element));
  }
  if (dictionary == nullptr) {
    return elements;
  }
  Dictionary entries;
  for (const auto& [key, content] : *dictionary) {
    const std::optional<std::string> newKey = spelling.key(key);
    std::optional<Value> newContent = newKey ? respelled(content, spelling, depth + 1) : std::nullopt;
    if (!newContent) {
      return std::nullopt;
    }
    entries.set(*newKey, std::move(*newContent));
  }
  return entries;
}

}  // namespace

std::optional<Value> withEscapes(const Value& value) {
  return respelled(value, {escapedKey, escapedLeaf}, 0);
}

std::optional<Value> withoutEscapes(const Value& value) {
  return respelled(value, {unescapedText, unescapedLeaf}, 0);
}

}  // namespace kesu
