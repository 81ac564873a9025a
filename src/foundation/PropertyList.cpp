#include "foundation/PropertyList.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <pugixml.hpp>

#include "foundation/Base64.h"
#include "foundation/CivilTime.h"
#include "foundation/NumberText.h"
#include "foundation/PropertyListEscapes.h"
#include "foundation/Text.h"

namespace kesu {
namespace {

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
// Follows the head of a list with escapes. Texts cannot forge it: they come later, and have no "<".
constexpr std::string_view kEscapesMark = "<!-- escapes: U+E01B and 4 hexadecimal digits, or @ and a date -->\n";
constexpr std::string_view kFoot = "</plist>\n";
constexpr std::string_view kInfinity = "+infinity";
constexpr std::string_view kNegativeInfinity = "-infinity";

// How a byte of a text is written.
enum class ByteClass : std::uint8_t { Plain, Escaped, Wide, Refused };

constexpr std::array<ByteClass, 256> classifyBytes() {
  std::array<ByteClass, 256> classes{};
  std::fill(classes.begin(), classes.begin() + 0x20, ByteClass::Refused);
  std::fill(classes.begin() + 0x80, classes.end(), ByteClass::Wide);
  classes['\t'] = classes['\n'] = ByteClass::Plain;
  classes['\r'] = classes['&'] = classes['<'] = classes['>'] = ByteClass::Escaped;
  return classes;
}

constexpr std::array<ByteClass, 256> kByteClasses = classifyBytes();

std::string_view escapeOf(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    default:
      return "&#13;";  // A bare carriage return is turned into a line feed by every XML reader.
  }
}

bool hasNonCharacter(std::string_view text) {
  return text.find("\xEF\xBF\xBE") != std::string_view::npos || text.find("\xEF\xBF\xBF") != std::string_view::npos;
}

// Appends XML; each operation returns whether the value can be kept whole.
class XmlWriter {
 public:
  explicit XmlWriter(std::string& out) : out_(out) {}

  bool value(const Value& value, std::size_t depth);
  bool dictionary(const Dictionary& dictionary, std::size_t depth);
  void markEscapes() { out_.append(kEscapesMark); }

 private:
  bool array(const Array& array, std::size_t depth);
  bool real(double number);
  bool date(Date date);
  bool text(std::string_view open, std::string_view text, std::string_view close);
  bool escaped(std::string_view text);
  void element(std::string_view open, std::string_view content, std::string_view close);
  void indent(std::size_t depth) { out_.append(depth, '\t'); }

  std::string& out_;
};

bool XmlWriter::value(const Value& value, std::size_t depth) {
  indent(depth);
  switch (value.kind()) {
    case Value::Kind::Null:
      return false;
    case Value::Kind::Bool:
      out_.append(*value.boolean() ? "<true/>\n" : "<false/>\n");
      return true;
    case Value::Kind::Integer:
      out_.append("<integer>");
      appendDecimal(out_, *value.integer());
      out_.append("</integer>\n");
      return true;
    case Value::Kind::Real:
      return real(*value.real());
    case Value::Kind::Text:
      return text("<string>", *value.text(), "</string>\n");
    case Value::Kind::Data:
      element("<data>", base64Encode(*value.data()), "</data>\n");
      return true;
    case Value::Kind::Date:
      return date(*value.date());
    case Value::Kind::Array:
      return array(*value.array(), depth);
    case Value::Kind::Dictionary:
      return dictionary(*value.dictionary(), depth);
  }
  return false;
}

bool XmlWriter::dictionary(const Dictionary& dictionary, std::size_t depth) {
  if (depth >= kPropertyListDepthLimit) {
    return false;
  }
  if (dictionary.empty()) {
    out_.append("<dict/>\n");
    return true;
  }
  out_.append("<dict>\n");
  for (const auto& [key, content] : dictionary) {
    indent(depth + 1);
    if (!text("<key>", key, "</key>\n") || !value(content, depth + 1)) {
      return false;
    }
  }
  indent(depth);
  out_.append("</dict>\n");
  return true;
}

bool XmlWriter::array(const Array& array, std::size_t depth) {
  if (depth >= kPropertyListDepthLimit) {
    return false;
  }
  if (array.empty()) {
    out_.append("<array/>\n");
    return true;
  }
  out_.append("<array>\n");
  if (!std::all_of(array.begin(), array.end(), [&](const Value& content) { return value(content, depth + 1); })) {
    return false;
  }
  indent(depth);
  out_.append("</array>\n");
  return true;
}

bool XmlWriter::real(double number) {
  out_.append("<real>");
  if (std::isinf(number)) {
    out_.append(number > 0 ? kInfinity : kNegativeInfinity);
  } else {
    appendShortestReal(out_, number);
  }
  out_.append("</real>\n");
  return true;
}

bool XmlWriter::date(Date date) {
  const std::optional<CivilTime> time = civilTime(date);
  if (time) {
    element("<date>", civilText(*time, 'T') + "Z", "</date>\n");
  }
  return time.has_value();
}

bool XmlWriter::text(std::string_view open, std::string_view text, std::string_view close) {
  out_.append(open);
  const bool whole = escaped(text);
  out_.append(close);
  return whole;
}

bool XmlWriter::escaped(std::string_view text) {
  bool isWide = false;
  std::size_t runBegin = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const ByteClass kind = kByteClasses[static_cast<std::uint8_t>(text[i])];
    if (kind == ByteClass::Refused) {
      return false;
    }
    isWide = isWide || kind == ByteClass::Wide;
    if (kind == ByteClass::Escaped) {
      out_.append(text.substr(runBegin, i - runBegin)).append(escapeOf(text[i]));
      runBegin = i + 1;
    }
  }
  out_.append(text.substr(runBegin));
  return !isWide || (isValidUtf8(text) && !hasNonCharacter(text));
}

void XmlWriter::element(std::string_view open, std::string_view content, std::string_view close) {
  out_.append(open).append(content).append(close);
}

template <typename Write>
std::optional<std::string> writeWhole(Write writeRoot) {
  constexpr std::size_t kUsualRecordBytes = 3000;  // One allocation for most records.
  std::string out;
  out.reserve(kUsualRecordBytes);
  out.append(kHead);
  XmlWriter writer(out);
  if (!writeRoot(writer)) {
    return std::nullopt;
  }
  out.append(kFoot);
  return out;
}

// Escapes are rare: only a list that could not be written without them pays for a copy.
std::optional<std::string> writeWithEscapes(const Value& value) {
  const std::optional<Value> escaped = withEscapes(value);
  return !escaped ? std::nullopt : writeWhole([&escaped](XmlWriter& writer) {
    writer.markEscapes();
    return writer.value(*escaped, 0);
  });
}

std::optional<Value> readValue(pugi::xml_node node, std::size_t depth);

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kSpaces = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kSpaces);
  return first == std::string_view::npos ? std::string_view()
                                         : text.substr(first, text.find_last_not_of(kSpaces) - first + 1);
}

bool isText(pugi::xml_node node) {
  return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

// The text of an element that may hold nothing else. References to characters can spell invalid UTF-8.
std::optional<std::string> textOf(pugi::xml_node element) {
  std::string text;
  for (const pugi::xml_node child : element) {
    if (!isText(child)) {
      return std::nullopt;
    }
    text.append(child.value());
  }
  return isValidUtf8(text) ? std::optional<std::string>(std::move(text)) : std::nullopt;
}

// The next element from `node` on, skipping the white space between elements; `foreign` is set when text lies between.
pugi::xml_node nextElement(pugi::xml_node node, bool& foreign) {
  while (node && node.type() != pugi::node_element) {
    foreign = foreign || !trimmed(node.value()).empty();
    node = node.next_sibling();
  }
  return node;
}

std::optional<Value> readReal(std::string_view text) {
  text = trimmed(text);
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
    text.remove_prefix(1);
  }
  double number = 0.0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = result.ec == std::errc() && result.ptr == text.data() + text.size();
  return whole ? std::optional<Value>(number) : std::nullopt;
}

std::optional<Value> readInteger(std::string_view text) {
  text = trimmed(text);
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
    text.remove_prefix(1);
  }
  std::int64_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ptr != text.data() + text.size() || result.ec == std::errc::invalid_argument) {
    return std::nullopt;
  }
  return result.ec == std::errc() ? std::optional<Value>(number) : readReal(text);
}

std::optional<Value> readArray(pugi::xml_node element, std::size_t depth) {
  Array array;
  bool foreign = false;
  for (pugi::xml_node child = nextElement(element.first_child(), foreign); child;
       child = nextElement(child.next_sibling(), foreign)) {
    std::optional<Value> value = readValue(child, depth + 1);
    if (!value) {
      return std::nullopt;
    }
    array.push_back(std::move(*value));
  }
  return foreign ? std::nullopt : std::optional<Value>(std::move(array));
}

std::optional<Value> readDictionary(pugi::xml_node element, std::size_t depth) {
  Dictionary dictionary;
  dictionary.reserve(static_cast<std::size_t>(std::distance(element.begin(), element.end())) / 2);
  bool foreign = false;
  pugi::xml_node child = nextElement(element.first_child(), foreign);
  while (child) {
    const pugi::xml_node content = nextElement(child.next_sibling(), foreign);
    const std::optional<std::string> key = std::string_view(child.name()) == "key" ? textOf(child) : std::nullopt;
    std::optional<Value> value = key && content ? readValue(content, depth + 1) : std::nullopt;
    if (!value) {
      return std::nullopt;
    }
    dictionary.set(*key, std::move(*value));
    child = nextElement(content.next_sibling(), foreign);
  }
  return foreign ? std::nullopt : std::optional<Value>(std::move(dictionary));
}

// An element with text. The name decides how the text is read.
std::optional<Value> readLeaf(std::string_view name, pugi::xml_node element) {
  std::optional<std::string> text = textOf(element);
  if (!text) {
    return std::nullopt;
  }
  if (name == "string") {
    return Value(std::move(*text));
  }
  if (name == "integer") {
    return readInteger(*text);
  }
  if (name == "real") {
    return readReal(*text);
  }
  if (name == "date") {
    return parseIsoDate(trimmed(*text));
  }
  if (name == "data") {
    return base64Decode(*text);
  }
  const bool isBool = (name == "true" || name == "false") && trimmed(*text).empty();
  return isBool ? std::optional<Value>(name == "true") : std::nullopt;
}

std::optional<Value> readValue(pugi::xml_node node, std::size_t depth) {
  const std::string_view name = node.name();
  const bool isArray = name == "array";
  if (!isArray && name != "dict") {
    return readLeaf(name, node);
  }
  if (depth >= kPropertyListDepthLimit) {
    return std::nullopt;
  }
  return isArray ? readArray(node, depth) : readDictionary(node, depth);
}

// The one element of a document without internal subset, or none.
pugi::xml_node rootOf(const pugi::xml_document& document) {
  pugi::xml_node root;
  for (const pugi::xml_node node : document) {
    const bool isSubset =
        node.type() == pugi::node_doctype && std::string_view(node.value()).find('[') != std::string_view::npos;
    if (isSubset || (root && node.type() == pugi::node_element)) {
      return {};
    }
    root = node.type() == pugi::node_element ? node : root;
  }
  return root;
}

bool isMarked(std::string_view bytes) {
  return bytes.starts_with(kHead) && bytes.substr(kHead.size()).starts_with(kEscapesMark);
}

bool isReadable(std::string_view bytes) {
  return bytes.size() <= kPropertyListSizeLimitBytes && bytes.find('\0') == std::string_view::npos &&
         isValidUtf8(bytes);
}

}  // namespace

std::optional<std::string> writePropertyList(const Value& value, PropertyListForm form) {
  auto list = writeWhole([&value](XmlWriter& writer) { return writer.value(value, 0); });
  return list || form == PropertyListForm::Standard ? list : writeWithEscapes(value);
}

std::optional<std::string> writePropertyList(const Dictionary& dictionary, PropertyListForm form) {
  auto list = writeWhole([&dictionary](XmlWriter& writer) { return writer.dictionary(dictionary, 0); });
  return list || form == PropertyListForm::Standard ? list : writeWithEscapes(dictionary);
}

std::optional<Value> parsePropertyList(std::string_view bytes, PropertyListForm form) {
  // Texts of white space only count, and line ends stay as they are.
  constexpr unsigned kFlags =
      (pugi::parse_default | pugi::parse_ws_pcdata_single | pugi::parse_doctype) & ~pugi::parse_eol;
  pugi::xml_document document;
  if (!isReadable(bytes) || !document.load_buffer(bytes.data(), bytes.size(), kFlags, pugi::encoding_utf8)) {
    return std::nullopt;
  }
  const pugi::xml_node root = rootOf(document);
  bool foreign = false;
  const pugi::xml_node content = nextElement(root.first_child(), foreign);
  const bool isAlone = content && !nextElement(content.next_sibling(), foreign) && !foreign;
  if (std::string_view(root.name()) != "plist" || !isAlone) {
    return std::nullopt;
  }
  std::optional<Value> value = readValue(content, 0);
  if (value && form == PropertyListForm::Escaped && isMarked(bytes)) {
    return withoutEscapes(*value);
  }
  return value;
}

}  // namespace kesu
