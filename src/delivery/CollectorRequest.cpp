#include "delivery/CollectorRequest.h"

#include <utility>

#include "foundation/Describe.h"
#include "foundation/NumberText.h"
#include "records/RecordKeys.h"
#include "records/Versions.h"
#include "services/ServiceRequest.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

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

Value describedUnlessSendable(const Value& value) {
  if (isSendable(value)) {
    return value;
  }
  std::string description = describe(value);
  KESU_LOG(0, "Unsupported class being passed to NSDictionary, and which is %s", description.c_str());
  return description;
}

}  // namespace

void optimizeDictionary(Dictionary& record) {
  record.removeIf([](const Dictionary::Entry& entry) { return entry.value.isNull(); });
}

Dictionary collectorBody(const Dictionary& record, double sentAt) {
  Dictionary body;
  body.reserve(record.size() + 1);
  for (const auto& [key, value] : record) {
    if (key != k_destinationKeyInDictionary && key != k_keyFilename) {
      body.set(key, describedUnlessSendable(value));
    }
  }
  body.set(k_AgentSentEpoch, milliseconds(sentAt));
  const std::string* interruptedAt = record.findText(k_CrashedOrForcedQuitTimestamp);
  if (interruptedAt != nullptr && !interruptedAt->empty()) {
    body.set(k_AgentCollectionEpoch, *interruptedAt);
  }
  return body;
}

std::optional<HttpRequest> collectorRequest(const Dictionary& body, const std::string& destination,
                                            const std::string& url) {
  auto request = jsonRequest(body, "POST", url);
  if (request) {  // In front of those of jsonRequest, as the collector has always received them.
    request->headers.insert(request->headers.begin(), {{std::string(k_TableName), destination},
                                                       {std::string(k_FullVersionKeyForHeader), fullVersionText()}});
    request->ignoresBody = true;  // A collector that answers at length has the record all the same.
  }
  return request;
}

}  // namespace kesu
