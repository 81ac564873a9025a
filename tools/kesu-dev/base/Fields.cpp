#include "tools/kesu-dev/base/Fields.h"

#include <utility>

#include "foundation/Json.h"
#include "tools/kesu-dev/base/Text.h"

namespace kesu::dev {

std::optional<Dictionary> parseObject(std::string_view json, std::string& problem) {
  std::optional<Value> parsed = parseJson(json);
  if (!parsed || parsed->dictionary() == nullptr) {
    problem = parsed ? "is JSON but not an object" : "is not valid JSON";
    return std::nullopt;
  }
  problem.clear();
  return std::move(*parsed->dictionary());
}

std::optional<Dictionary> parseObject(std::string_view json) {
  std::string ignored;
  return parseObject(json, ignored);
}

std::string textIn(const Dictionary& from, std::string_view key) {
  const std::string* text = from.findText(key);
  return text == nullptr ? std::string() : *text;
}

std::int64_t numberIn(const Dictionary& from, std::string_view key) {
  const Value* value = from.find(key);
  return value == nullptr ? 0 : value->integerValue();
}

const Array& listIn(const Dictionary& from, std::string_view key) {
  static const Array none;
  const Value* value = from.find(key);
  return value == nullptr || value->array() == nullptr ? none : *value->array();
}

std::vector<Dictionary> objectsOf(const Array& list) {
  std::vector<Dictionary> objects;
  for (const Value& value : list) {
    objects.push_back(value.dictionary() != nullptr ? *value.dictionary() : Dictionary());
  }
  return objects;
}

std::vector<std::string> textsOf(const Array& list) {
  std::vector<std::string> texts;
  for (const Value& value : list) {
    texts.push_back(value.text() != nullptr ? *value.text() : std::string());
  }
  return texts;
}

Array listOf(const std::vector<std::string>& texts) {
  Array list;
  for (const std::string& text : texts) {
    list.emplace_back(validUtf8(text));
  }
  return list;
}

std::string jsonText(const Dictionary& dictionary) {
  std::string text;
  return writeJson(dictionary, text) == JsonStatus::Ok ? text : "{}";
}

}  // namespace kesu::dev
