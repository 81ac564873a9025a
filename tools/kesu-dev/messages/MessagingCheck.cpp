#include "tools/kesu-dev/messages/MessagingCheck.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "records/RecordKeys.h"
#include "services/MessageKeys.h"
#include "tools/kesu-dev/base/Fields.h"
#include "tools/kesu-dev/base/Text.h"
#include "tools/kesu-dev/records/RecordCheck.h"

namespace kesu::dev {
namespace {

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
  KeyForm form;
};

constexpr BodyKey kBodyKeys[] = {
    {k_KesuAppKey, "application key", false, KeyForm::FilledText},
    {k_KesuAppInstanceId, "app-instance identifier", false, KeyForm::FilledText},
    {k_KesuAppInstanceId2, "second app-instance identifier", false, KeyForm::FilledText},
    {kMessageIdKey, "message identifier", true, KeyForm::FilledText},
    {kCampaignIdKey, "campaign identifier", true, KeyForm::Text},
};

bool belongs(const BodyKey& key, MessagingCall call) {
  return !key.singleMessageOnly || call == MessagingCall::SingleMessage;
}

void checkKeys(MessagingCall call, const Dictionary& body, std::vector<std::string>& reasons) {
  for (const BodyKey& key : kBodyKeys) {
    const std::string fault = belongs(key, call) ? keyFault(key.name, key.meaning, key.form, body.find(key.name)) : "";
    if (!fault.empty()) {
      reasons.push_back(fault);
    }
  }
  for (const auto& entry : body) {
    const bool known = std::any_of(std::begin(kBodyKeys), std::end(kBodyKeys),
                                   [&](const BodyKey& key) { return key.name == entry.key && belongs(key, call); });
    if (!known) {
      reasons.push_back(dev::quoted(entry.key) + " does not belong to this request");
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
  if (std::string fault = typeFault(request.contentType); !fault.empty()) {
    check.reasons.push_back(std::move(fault));
  }
  std::string problem;
  if (std::optional<Dictionary> body = parseObject(request.body, problem)) {
    checkKeys(route.call, *body, check.reasons);
    check.body = std::move(*body);
  } else {
    check.reasons.push_back("the body " + problem);
  }
  return check;
}

}  // namespace kesu::dev
