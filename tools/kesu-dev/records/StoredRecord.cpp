#include "tools/kesu-dev/records/StoredRecord.h"

#include <algorithm>
#include <string_view>

#include "tools/kesu-dev/base/Fields.h"
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
  result.set("reasons", listOf(record.reasons));
  return result;
}

bool flagOf(const Dictionary& from, std::string_view key) {
  const Value* value = from.find(key);
  return value != nullptr && value->boolean() != nullptr && *value->boolean();
}

void readBody(const Dictionary& from, StoredRecord& record) {
  const Value* body = from.find("record");
  record.bodyIsObject = body != nullptr && body->dictionary() != nullptr;
  if (record.bodyIsObject) {
    record.body = jsonText(*body->dictionary());
    record.messageId = textIn(*body->dictionary(), "msg_id");
  } else {
    record.body = textIn(from, "body");
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
  record.id = numberIn(*from, "id");
  record.arrivedMs = numberIn(*from, "arrivedMs");
  record.path = textIn(*from, "path");
  record.destination = textIn(*from, "destination");
  record.duplicateOf = numberIn(*from, "duplicateOf");
  record.wasStored = flagOf(*from, "wasStored");
  record.reasons = textsOf(listIn(*from, "reasons"));
  if (const Value* headers = from->find("headers"); headers != nullptr && headers->dictionary() != nullptr) {
    record.headers = jsonText(*headers->dictionary());
  }
  readBody(*from, record);
  return record;
}

Dictionary bodyOf(const StoredRecord& record) {
  return record.bodyIsObject ? parseObject(record.body).value_or(Dictionary()) : Dictionary();
}

}  // namespace kesu::dev
