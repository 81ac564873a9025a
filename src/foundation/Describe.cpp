#include "foundation/Describe.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "foundation/CivilTime.h"
#include "foundation/Digest.h"
#include "foundation/NumberText.h"

namespace kesu {
namespace {

constexpr std::size_t kDeepestLevel = 64;  // A log line nested deeper serves no reader, and recursion needs a limit.
constexpr std::size_t kBytesOfGroup = 4;

void append(std::string& out, const Value& value, std::size_t level);

void appendIndent(std::string& out, std::size_t level) {
  out.append(level * 4, ' ');
}

bool needsNoQuotes(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || std::string_view("_./$:").find(character) != std::string_view::npos;
}

void appendNestedText(std::string& out, std::string_view text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), needsNoQuotes)) {
    out.append(text);
    return;
  }
  out.push_back('"');
  for (const char character : text) {
    if (character == '"' || character == '\\') {
      out.push_back('\\');
    }
    out.push_back(character);
  }
  out.push_back('"');
}

void appendNested(std::string& out, const Value& value, std::size_t level) {
  if (const std::string* text = value.text()) {
    appendNestedText(out, *text);
  } else {
    append(out, value, level);
  }
}

void appendArray(std::string& out, const Array& array, std::size_t level) {
  out.append("(\n");
  for (std::size_t i = 0; i < array.size(); ++i) {
    appendIndent(out, level + 1);
    appendNested(out, array[i], level + 1);
    out.append(i + 1 < array.size() ? ",\n" : "\n");
  }
  appendIndent(out, level);
  out.push_back(')');
}

void appendDictionary(std::string& out, const Dictionary& dictionary, std::size_t level) {
  out.append("{\n");
  for (const auto& [key, value] : dictionary) {
    appendIndent(out, level + 1);
    appendNestedText(out, key);
    out.append(" = ");
    appendNested(out, value, level + 1);
    out.append(";\n");
  }
  appendIndent(out, level);
  out.push_back('}');
}

void appendData(std::string& out, std::span<const std::uint8_t> bytes) {
  out.push_back('<');
  while (!bytes.empty()) {
    const std::size_t count = std::min(bytes.size(), kBytesOfGroup);
    out.append(hexLower(bytes.first(count)));
    bytes = bytes.subspan(count);
    out.append(bytes.empty() ? "" : " ");
  }
  out.push_back('>');
}

void appendDate(std::string& out, Date date) {
  if (const std::optional<CivilTime> time = civilTime(date)) {
    out.append(civilText(*time, ' ')).append(" +0000");
  } else {
    out.append("<date>");
  }
}

void appendContainer(std::string& out, const Value& value, std::size_t level) {
  if (level >= kDeepestLevel) {
    out.append("...");
  } else if (const Array* array = value.array()) {
    appendArray(out, *array, level);
  } else {
    appendDictionary(out, *value.dictionary(), level);
  }
}

void append(std::string& out, const Value& value, std::size_t level) {
  switch (value.kind()) {
    case Value::Kind::Null:
      out.append("<null>");
      return;
    case Value::Kind::Bool:
    case Value::Kind::Integer:
      appendDecimal(out, value.integerValue());
      return;
    case Value::Kind::Real:
      appendShortestReal(out, *value.real());
      return;
    case Value::Kind::Text:
      out.append(*value.text());
      return;
    case Value::Kind::Data:
      appendData(out, *value.data());
      return;
    case Value::Kind::Date:
      appendDate(out, *value.date());
      return;
    case Value::Kind::Array:
    case Value::Kind::Dictionary:
      appendContainer(out, value, level);
      return;
  }
}

}  // namespace

std::string describe(const Value& value) {
  std::string text;
  append(text, value, 0);
  return text;
}

std::string describe(const Value* value) {
  return value != nullptr ? describe(*value) : kDescriptionOfNothing;
}

std::string describe(const Dictionary& dictionary) {
  std::string text;
  appendDictionary(text, dictionary, 0);
  return text;
}

}  // namespace kesu
