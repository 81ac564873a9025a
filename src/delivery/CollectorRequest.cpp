#include "delivery/CollectorRequest.h"

#include <algorithm>
#include <forward_list>
#include <utility>
#include <vector>

#include "foundation/Describe.h"
#include "foundation/NumberText.h"
#include "records/Destinations.h"
#include "records/RecordKeys.h"
#include "records/Versions.h"
#include "services/ServiceRequest.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr std::size_t kHeaders = 5;  // Of a request, with those of jsonRequest().

bool isSendable(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Null:
    case Value::Kind::Bool:
    case Value::Kind::Integer:
    case Value::Kind::Real:
    case Value::Kind::Text:
    case Value::Kind::Array:
    case Value::Kind::Dictionary:
      return true;
    case Value::Kind::Data:
    case Value::Kind::Date:
      return false;
  }
  return false;
}

Value described(const Value& value) {
  std::string description = describe(value);
  KESU_LOG(0, "Unsupported class being passed to NSDictionary, and which is %s", description.c_str());
  return description;
}

// As Dictionary::set(): an existing field keeps its place.
void setField(std::vector<JsonField>& fields, std::string_view key, const Value& value) {
  const auto found =
      std::find_if(fields.begin(), fields.end(), [&](const JsonField& field) { return field.key == key; });
  if (found == fields.end()) {
    fields.push_back({key, &value});
  } else {
    found->value = &value;
  }
}

}  // namespace

void optimizeDictionary(Dictionary& record) {
  record.removeIf([](const Dictionary::Entry& entry) { return entry.value.isNull(); });
}

std::optional<HttpRequest> collectorRequest(const Dictionary& record, double sentAt, std::string url) {
  std::vector<JsonField> body;  // Refers to the record: a copy would cost as much as writing it.
  std::forward_list<Value> descriptions;
  body.reserve(record.size() + 2);
  for (const auto& [key, value] : record) {
    if (key != k_destinationKeyInDictionary && key != k_keyFilename) {
      body.push_back({key, isSendable(value) ? &value : &descriptions.emplace_front(described(value))});
    }
  }
  const Value sent = milliseconds(sentAt);
  setField(body, k_AgentSentEpoch, sent);
  const Value* interruptedAt = record.find(k_CrashedOrForcedQuitTimestamp);
  if (interruptedAt != nullptr && interruptedAt->text() != nullptr && !interruptedAt->text()->empty()) {
    setField(body, k_AgentCollectionEpoch, *interruptedAt);
  }
  const std::string* destination = record.findText(k_destinationKeyInDictionary);
  HttpRequest request;
  request.method = "POST";
  request.url = std::move(url);
  request.headers.reserve(kHeaders);
  request.headers.emplace_back(k_TableName,
                               destination != nullptr ? std::string_view(*destination) : kUnknownDestination);
  request.headers.emplace_back(k_FullVersionKeyForHeader, fullVersionText());
  request.isFutileWithoutBody = true;  // The success of a GET would pass for the delivery of the record.
  request.ignoresBody = true;          // A collector that answers at length has the record all the same.
  return jsonRequest(body, std::move(request));
}

}  // namespace kesu
