#include "tools/kesu-dev/messages/MessagingCheck.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "foundation/Json.h"
#include "tools/kesu-dev/base/Text.h"
#include "tools/kesu-dev/records/RecordCheck.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kShownColumns = 60;

constexpr MessagingRoute kRoutes[] = {
    {MessagingCall::Count, "PUT", "/api/inapp/count/", "/api/devmode/inapp/count/"},
    {MessagingCall::NewHeaders, "POST", "/api/inapp/newUnFetched/", "/api/devmode/inapp/newUnFetched/"},
    {MessagingCall::SingleMessage, "PUT", "/api/inapp/getmessage/", "/api/devmode/inapp/getmessage/"},
    {MessagingCall::NewMessages, "POST", "/api/inapp/getInAppMessages/", "/api/devmode/inapp/getInAppMessages/"},
    {MessagingCall::Tags, "PUT", "/api/user-personalization/gettags", "/api/devmode/user-personalization/gettags"},
};

struct BodyKey {
  std::string_view name;
  std::string_view meaning;
  bool singleMessageOnly;
  bool mayBeEmpty;
};

constexpr BodyKey kBodyKeys[] = {
    {"kak", "application key", false, false},
    {"kaid", "app-instance identifier", false, false},
    {"kaid2", "second app-instance identifier", false, false},
    {"mid", "message identifier", true, false},
    {"cid", "campaign identifier", true, true},
};

bool belongs(const BodyKey& key, MessagingCall call) {
  return !key.singleMessageOnly || call == MessagingCall::SingleMessage;
}

std::string keyFault(const BodyKey& key, const Dictionary& body) {
  const std::string name = "\"" + std::string(key.name) + "\" ";
  if (!body.contains(key.name)) {
    return name + "(" + std::string(key.meaning) + ") is missing";
  }
  const std::string* text = body.findText(key.name);
  if (text == nullptr) {
    return name + "is not a text";
  }
  return text->empty() && !key.mayBeEmpty ? name + "is empty" : "";
}

void checkKeys(MessagingCall call, const Dictionary& body, std::vector<std::string>& reasons) {
  for (const BodyKey& key : kBodyKeys) {
    const std::string fault = belongs(key, call) ? keyFault(key, body) : "";
    if (!fault.empty()) {
      reasons.push_back(fault);
    }
  }
  for (const auto& entry : body) {
    const bool known = std::any_of(std::begin(kBodyKeys), std::end(kBodyKeys),
                                   [&](const BodyKey& key) { return key.name == entry.key && belongs(key, call); });
    if (!known) {
      reasons.push_back("\"" + printable(shortened(entry.key, kShownColumns)) + "\" does not belong to this request");
    }
  }
}

}  // namespace

std::span<const MessagingRoute> messagingRoutes() {
  return kRoutes;
}

const MessagingRoute* findMessagingRoute(std::string_view path) {
  const auto* found = std::find_if(std::begin(kRoutes), std::end(kRoutes), [&](const MessagingRoute& route) {
    return route.productionPath == path || route.developmentPath == path;
  });
  return found == std::end(kRoutes) ? nullptr : found;
}

MessagingCheck checkMessagingRequest(const MessagingRoute& route, const MessagingRequest& request) {
  MessagingCheck check;
  if (request.method != route.method) {
    check.reasons.push_back("the method is " + printable(request.method) + ", not " + std::string(route.method));
  }
  if (!isJsonType(request.contentType)) {
    check.reasons.push_back("Content-Type is \"" + printable(shortened(request.contentType, kShownColumns)) +
                            "\", not application/json");
  }
  const std::optional<Value> parsed = parseJson(request.body);
  check.isObject = parsed && parsed->dictionary() != nullptr;
  if (check.isObject) {
    check.body = *parsed->dictionary();
    checkKeys(route.call, check.body, check.reasons);
  } else {
    check.reasons.emplace_back(parsed ? "the body is JSON but not an object" : "the body is not valid JSON");
  }
  return check;
}

}  // namespace kesu::dev
