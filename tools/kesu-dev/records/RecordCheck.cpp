#include "tools/kesu-dev/records/RecordCheck.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "foundation/Text.h"
#include "records/RecordKeys.h"
#include "tools/kesu-dev/base/Fields.h"
#include "tools/kesu-dev/base/Text.h"
#include "tools/kesu-dev/records/KeyTable.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kMessageIdLength = 22;  // 16 bytes in base64.
constexpr std::size_t kQuotedColumns = 60;

using Reasons = std::vector<std::string>;

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

void addUnlessEmpty(std::string reason, Reasons& reasons) {
  if (!reason.empty()) {
    reasons.push_back(std::move(reason));
  }
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
  addUnlessEmpty(typeFault(record.contentType), reasons);
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

bool contains(std::string_view codes, std::string_view code) {
  return codes.find(code) != std::string_view::npos;
}

void checkKey(const KeyInfo& key, std::string_view destination, const Dictionary& body, Reasons& reasons) {
  const Value* value = body.find(key.key);
  if (value == nullptr && !contains(key.requiredFor, destination)) {
    return;
  }
  if (value != nullptr && !key.allowedFor.empty() && !contains(key.allowedFor, destination)) {
    reasons.push_back("\"" + std::string(key.key) + "\" does not belong to destination " + quoted(destination));
  }
  addUnlessEmpty(keyFault(key.key, key.meaning, key.form, value), reasons);
}

void checkBody(const WireRecord& record, const Dictionary& body, Reasons& reasons) {
  for (const std::string_view key : {k_destinationKeyInDictionary, k_keyFilename}) {
    if (body.contains(key)) {
      reasons.push_back("\"" + std::string(key) + "\" is for the sender only and must not be sent");
    }
  }
  if (findDestination(record.destination) != nullptr) {
    for (const KeyInfo& key : allKeys()) {
      checkKey(key, record.destination, body, reasons);
    }
  }
  const std::string* version = body.findText(k_FullVersionKeyForBody);
  if (version != nullptr && *version != record.version) {
    reasons.push_back("\"~v\" " + quoted(*version) + " differs from header v " + quoted(record.version));
  }
}

// A record that reports an interrupted run has the time of that run under "ace": its age means nothing.
bool wasStored(const Dictionary& body) {
  const auto made = parseDecimal(textIn(body, k_AgentCollectionEpoch));
  const auto sent = parseDecimal(textIn(body, k_AgentSentEpoch));
  return textIn(body, k_CrashedOrForcedQuitTimestamp).empty() && made && sent && *sent - *made > kFreshMilliseconds;
}

}  // namespace

std::string quoted(std::string_view text) {
  return '"' + printable(shortened(text, kQuotedColumns)) + '"';
}

std::string typeFault(std::string_view contentType) {
  const std::string type = trimmedRight(std::string(contentType.substr(0, contentType.find(';'))));
  return equalsIgnoringCase(type, "application/json")
             ? std::string()
             : "Content-Type is " + quoted(contentType) + ", not application/json";
}

std::string keyFault(std::string_view key, std::string_view meaning, KeyForm form, const Value* value) {
  const std::string name = "\"" + std::string(key) + "\" ";
  if (value == nullptr) {
    return name + "(" + std::string(meaning) + ") is missing";
  }
  const std::string fault = formFault(form, *value);
  return fault.empty() ? fault : name + fault;
}

CheckResult checkRecord(const WireRecord& record) {
  CheckResult result;
  checkHeaders(record, result.reasons);
  std::string problem;
  const std::optional<Dictionary> body = parseObject(record.body, problem);
  if (!body) {
    result.reasons.push_back("the body " + problem);
    return result;
  }
  result.isObject = true;
  checkBody(record, *body, result.reasons);
  result.messageId = textIn(*body, k_CommonMsgId);
  result.wasStored = wasStored(*body);
  return result;
}

}  // namespace kesu::dev
