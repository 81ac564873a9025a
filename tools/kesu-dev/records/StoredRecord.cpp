#include "tools/kesu-dev/records/StoredRecord.h"

#include <algorithm>
#include <string_view>

#include "foundation/Json.h"
#include "tools/kesu-dev/base/Text.h"

namespace kesu::dev {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

Dictionary envelope(const StoredRecord& record) {
  Dictionary result{{"id", record.id},
                    {"arrivedMs", record.arrivedMs},
                    {"arrived", utcText(record.arrivedMs)},
                    {"path", validUtf8(record.path)},
                    {"destination", validUtf8(record.destination)},
                    {"good", record.good()},
                    {"duplicateOf", record.duplicateOf},
                    {"wasStored", record.wasStored}};
  Array reasons;
  for (const std::string& reason : record.reasons) {
    reasons.emplace_back(validUtf8(reason));
  }
  result.set("reasons", std::move(reasons));
  return result;
}

std::string textOf(const Dictionary& from, std::string_view key) {
  const std::string* text = from.findText(key);
  return text == nullptr ? std::string() : *text;
}

std::int64_t integerOf(const Dictionary& from, std::string_view key) {
  const Value* value = from.find(key);
  return value == nullptr ? 0 : value->integerValue();
}

bool flagOf(const Dictionary& from, std::string_view key) {
  const Value* value = from.find(key);
  return value != nullptr && value->boolean() != nullptr && *value->boolean();
}

std::vector<std::string> reasonsOf(const Dictionary& from) {
  std::vector<std::string> result;
  const Value* list = from.find("reasons");
  if (list != nullptr && list->array() != nullptr) {
    for (const Value& reason : *list->array()) {
      result.push_back(reason.text() != nullptr ? *reason.text() : std::string());
    }
  }
  return result;
}

void readBody(const Dictionary& from, StoredRecord& record) {
  const Value* body = from.find("record");
  record.bodyIsObject = body != nullptr && body->dictionary() != nullptr;
  if (record.bodyIsObject) {
    record.body = jsonText(*body->dictionary());
    record.messageId = textOf(*body->dictionary(), "msg_id");
  } else {
    record.body = textOf(from, "body");
  }
}

// Line breaks in JSON are blanks between its tokens; as blanks they keep the object on one line.
void appendOnOneLine(std::string_view json, std::string& out) {
  if (json.starts_with(kByteOrderMark)) {
    json.remove_prefix(kByteOrderMark.size());
  }
  const std::size_t start = out.size();
  out += json;
  const auto isLineBreak = [](char c) { return c == '\n' || c == '\r'; };
  std::replace_if(out.begin() + static_cast<std::ptrdiff_t>(start), out.end(), isLineBreak, ' ');
}

}  // namespace

void appendJson(const StoredRecord& record, std::string& out) {
  Dictionary head = envelope(record);
  if (!record.bodyIsObject) {
    head.set("body", validUtf8(record.body));
  }
  out += jsonText(head);
  out.pop_back();
  out += ",\"headers\":";
  out += record.headers.empty() ? "{}" : record.headers;
  if (record.bodyIsObject) {
    out += ",\"record\":";
    appendOnOneLine(record.body, out);
  }
  out += '}';
}

std::optional<StoredRecord> storedRecordFromJson(const Value& value) {
  const Dictionary* from = value.dictionary();
  if (from == nullptr || !from->contains("id")) {
    return std::nullopt;
  }
  StoredRecord record;
  record.id = integerOf(*from, "id");
  record.arrivedMs = integerOf(*from, "arrivedMs");
  record.path = textOf(*from, "path");
  record.destination = textOf(*from, "destination");
  record.duplicateOf = integerOf(*from, "duplicateOf");
  record.wasStored = flagOf(*from, "wasStored");
  record.reasons = reasonsOf(*from);
  if (const Value* headers = from->find("headers"); headers != nullptr && headers->dictionary() != nullptr) {
    record.headers = jsonText(*headers->dictionary());
  }
  readBody(*from, record);
  return record;
}

Dictionary bodyOf(const StoredRecord& record) {
  if (!record.bodyIsObject) {
    return {};
  }
  const std::optional<Value> parsed = parseJson(record.body);
  return parsed && parsed->dictionary() != nullptr ? *parsed->dictionary() : Dictionary();
}

std::string jsonText(const Dictionary& dictionary) {
  std::string text;
  return writeJson(dictionary, text) == JsonStatus::Ok ? text : "{}";
}

}  // namespace kesu::dev
