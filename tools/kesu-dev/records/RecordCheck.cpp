#include "tools/kesu-dev/records/RecordCheck.h"

#include <algorithm>
#include <optional>

#include "foundation/Json.h"
#include "tools/kesu-dev/base/Text.h"
#include "tools/kesu-dev/records/KeyTable.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kMessageIdLength = 22;

using Reasons = std::vector<std::string>;

std::string quoted(std::string_view text) {
  return '"' + printable(shortened(text, 60)) + '"';
}

// Data version, system, library version: "10-i-3.2.3".
bool isVersion(std::string_view text) {
  const std::size_t first = text.find('-');
  const std::size_t second = first == std::string_view::npos ? first : text.find('-', first + 1);
  return second != std::string_view::npos && parseDecimal(text.substr(0, first)) && second > first + 1 &&
         second + 1 < text.size();
}

bool isMessageId(std::string_view text) {
  const auto isBase64 = [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/';
  };
  return text.size() == kMessageIdLength && std::all_of(text.begin(), text.end(), isBase64);
}

void checkHeaders(const WireRecord& record, Reasons& reasons) {
  if (record.destination.empty()) {
    reasons.emplace_back("header t (destination) is missing");
  } else if (record.destination == kUnknownDestination) {
    reasons.emplace_back("the record was posted without a destination (header t is UnknownDestination)");
  } else if (findDestination(record.destination) == nullptr) {
    reasons.push_back("header t names an unknown destination " + quoted(record.destination));
  }
  if (record.version.empty()) {
    reasons.emplace_back("header v (version) is missing");
  } else if (!isVersion(record.version)) {
    reasons.push_back("header v " + quoted(record.version) + " does not look like 10-i-3.2.3");
  }
  if (!isJsonType(record.contentType)) {
    reasons.push_back("Content-Type is " + quoted(record.contentType) + ", not application/json");
  }
}

std::string formFault(KeyForm form, const Value& value) {
  if (form == KeyForm::Any) {
    return {};
  }
  const std::string* text = value.text();
  if (text == nullptr) {
    return "is not a text";
  }
  switch (form) {
    case KeyForm::Any:
    case KeyForm::Text:
      return {};
    case KeyForm::FilledText:
      return text->empty() ? "is empty" : "";
    case KeyForm::Milliseconds:
      return parseDecimal(*text) ? "" : quoted(*text) + " is not a decimal number of milliseconds";
    case KeyForm::MessageId:
      return isMessageId(*text) ? "" : quoted(*text) + " is not 22 characters of base64";
  }
  return {};
}

bool holds(std::string_view codes, std::string_view code) {
  return codes.find(code) != std::string_view::npos;
}

void checkKey(const KeyInfo& key, std::string_view destination, const Dictionary& body, Reasons& reasons) {
  const std::string name = "\"" + std::string(key.key) + "\" ";
  const Value* value = body.find(key.key);
  if (value == nullptr) {
    if (holds(key.requiredFor, destination)) {
      reasons.push_back(name + "(" + std::string(key.meaning) + ") is missing");
    }
    return;
  }
  if (!key.allowedFor.empty() && !holds(key.allowedFor, destination)) {
    reasons.push_back(name + "does not belong to destination " + quoted(destination));
  }
  if (const std::string fault = formFault(key.form, *value); !fault.empty()) {
    reasons.push_back(name + fault);
  }
}

void checkBody(const WireRecord& record, const Dictionary& body, Reasons& reasons) {
  for (const std::string_view key : {"dest", "fnk"}) {
    if (body.contains(key)) {
      reasons.push_back("\"" + std::string(key) + "\" is for the sender only and must not be sent");
    }
  }
  if (findDestination(record.destination) != nullptr) {
    for (const KeyInfo& key : allKeys()) {
      checkKey(key, record.destination, body, reasons);
    }
  }
  const std::string* version = body.findText("~v");
  if (version != nullptr && *version != record.version) {
    reasons.push_back("\"~v\" " + quoted(*version) + " differs from header v " + quoted(record.version));
  }
}

std::optional<std::int64_t> milliseconds(const Dictionary& body, std::string_view key) {
  const std::string* text = body.findText(key);
  return text == nullptr ? std::nullopt : parseDecimal(*text);
}

// A record that reports an interrupted run carries the time of that run under "ace": its age says nothing.
bool wasStored(const Dictionary& body) {
  const std::string* interrupted = body.findText("~cfqt");
  if (interrupted != nullptr && !interrupted->empty()) {
    return false;
  }
  const auto made = milliseconds(body, "ace");
  const auto sent = milliseconds(body, "ase");
  return made && sent && *sent - *made > kFreshMilliseconds;
}

}  // namespace

bool isJsonType(std::string_view contentType) {
  const std::string type = lowerAscii(contentType.substr(0, contentType.find(';')));
  return type.substr(0, type.find_last_not_of(' ') + 1) == "application/json";
}

CheckResult checkRecord(const WireRecord& record) {
  CheckResult result;
  checkHeaders(record, result.reasons);
  const std::optional<Value> parsed = parseJson(record.body);
  const Dictionary* body = parsed ? parsed->dictionary() : nullptr;
  if (body == nullptr) {
    result.reasons.emplace_back(parsed ? "the body is JSON but not an object" : "the body is not valid JSON");
    return result;
  }
  result.isObject = true;
  checkBody(record, *body, result.reasons);
  if (const std::string* id = body->findText("msg_id")) {
    result.messageId = *id;
  }
  result.wasStored = wasStored(*body);
  return result;
}

}  // namespace kesu::dev
