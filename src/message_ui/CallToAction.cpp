#include "message_ui/CallToAction.h"

#include <kesu/events/KesuCustomEvent.h>

#include <utility>

#include "foundation/Afterwards.h"
#include "foundation/Json.h"
#include "foundation/NumberText.h"
#include "foundation/Objects.h"
#include "messaging/ButtonClicks.h"
#include "platform/OrderlyEnd.h"
#include "records/DefaultsKeys.h"
#include "records/Destinations.h"
#include "records/MessageIdentifier.h"
#include "records/RecordKeys.h"
#include "services/MessageKeys.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr std::string_view kIdentifierMark = "unique-id";
constexpr std::string_view kIdentifierScheme = "unique-id://";
constexpr int kStatusOk = 200;

bool holds(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

bool isWebHook(std::string_view action) {
  return holds(action, "&wh=true") || holds(action, "?wh=true");
}

std::string without(std::string text, std::string_view part) {
  for (auto found = text.find(part); found != std::string::npos; found = text.find(part, found)) {
    text.erase(found, part.size());
  }
  return text;
}

bool continuesCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// Removes whole characters from the end until as many UTF-16 units as the marker has are removed: 8, which is how the
// length was always counted.
std::string_view withoutMarker(std::string_view action) {
  constexpr std::size_t kMarkerUnits = 8;
  constexpr std::size_t kBytesOfPair = 4;
  for (std::size_t units = 0; units < kMarkerUnits && !action.empty();) {
    const std::size_t before = action.size();
    while (action.size() > 1 && continuesCharacter(action.back())) {
      action.remove_suffix(1);
    }
    action.remove_suffix(1);
    units += before - action.size() >= kBytesOfPair ? 2U : 1U;
  }
  return action;
}

DeepLinkStatus openUrl(UrlOpener& opener, const ButtonPress& press, const std::string& url) {
  if (isEndingAtExit()) {
    return DeepLinkStatus::Refused;
  }
  if (press.shouldOpenUrl && !press.shouldOpenUrl(url)) {
    return DeepLinkStatus::Refused;
  }
  if (opener.open(url)) {
    return DeepLinkStatus::Opened;
  }
  KESU_LOG(0, "In App action has not valid url identifier, please check the service once.");
  return DeepLinkStatus::Refused;
}

KesuInAppStatus statusOf(const ButtonPress& press, const ButtonAction& action, DeepLinkStatus status) {
  KesuInAppStatus made;
  made.buttonIndex = press.tag;
  made.messageID = textOf(press.messageID);
  made.campaignID = textOf(press.campaignID);
  made.title = press.title;
  if (action.kind == ButtonAction::Kind::Identifier) {
    made.urlString = action.text;
  }
  made.status = static_cast<std::int64_t>(status);
  return made;
}

void callWebHook(Platform& platform, KesuMetrics& metrics, const std::string& url,
                 std::function<void(const KesuInAppStatus&)> block, KesuInAppStatus status) {
  HttpRequest request;
  request.method = "POST";
  request.url = url;
  writeJson(webHookBody(platform, metrics, newBase64Uuid(platform.random)), request.body);
  request.headers = {{"Content-Type", "application/json"},
                     {"Content-Length", decimal(static_cast<std::int64_t>(request.body.size()))}};
  platform.http.send(std::move(request),
                     [block = std::move(block), status = std::move(status)](HttpReply reply) mutable {
                       if (reply.error != HttpError::None && reply.status != kStatusOk && block && !isEndingAtExit()) {
                         status.error = KesuInAppError{reply.error, reply.status, std::move(reply.errorText)};
                         block(status);
                       }
                     });
}

void callHost(NotificationCenter& notifications, const ButtonPress& press, const KesuInAppStatus& status) {
  if (isEndingAtExit()) {
    return;
  }
  if (press.completionBlock) {  // Block or delegate, never both: the block is of this very show.
    press.completionBlock(status);
  } else if (KesuInAppMessageDelegate* delegate = press.delegate ? press.delegate() : nullptr) {
    delegate->inAppMessageButtonHandlerWithIndex(press.tag, press.title, press.action, status.status);
  }
  postButtonClick(notifications, status);
}

void postRecord(KesuPost& post, UserDefaults& defaults, const ButtonPress& press) {
  Dictionary record;
  setUnlessNil(record, kMessageIdKey, press.messageID);
  setUnlessNil(record, kCampaignIdKey, press.campaignID);
  setUnlessNil(record, k_KesuAppKey, defaults.get(kAppKeyDefault));
  setUnlessNil(record, k_KesuAppInstanceId, defaults.get(kInstanceIdDefault));
  record.set(kActionKey, kActionPressed);
  record.set(k_destinationKeyInDictionary, kTableNotifications);
  record.set(kButtonIdKey, decimal(press.tag));
  record.set(kButtonNameKey, press.title);
  post.post(record);
}

void postEvent(const ButtonPress& press, std::int64_t status) {
  Attributes attributes;
  setUnlessNil(attributes, kCampaignIdKey, press.campaignID);
  attributes.set("buttonID", press.tag);
  attributes.set("title", press.title);
  attributes.set("deepLinkStatus", status);
  KesuCustomEvent::postWithEventName("Kesu.InAppCallToAction", attributes);
}

}  // namespace

ButtonAction decideAction(std::string_view action) {
  using Kind = ButtonAction::Kind;
  if (action.empty()) {
    return {};
  }
  if (holds(action, kIdentifierMark)) {
    return {Kind::Identifier, without(std::string(action), kIdentifierScheme)};
  }
  return isWebHook(action) ? ButtonAction{Kind::WebHook, std::string(withoutMarker(action))}
                           : ButtonAction{Kind::Open, std::string(action)};
}

Dictionary webHookBody(Platform& platform, KesuMetrics& metrics, const std::string& uniqueId) {
  const auto info = [&](const char* key) { return Object(platform.bundle.infoText(key)); };
  const double now = platform.clock.now();
  Dictionary body{{"v", KesuPost::FullVersionHeader()}, {"osName", "Linux"}};
  setUnlessNil(body, "osVersion", metrics.systemVersion());
  setUnlessNil(body, "appVersion", info("CFBundleShortVersionString"));
  setUnlessNil(body, "appName", info("CFBundleDisplayName"));
  setUnlessNil(body, "bundleVersion", info("CFBundleVersion"));
  if (const auto bundle = platform.bundle.infoText("CFBundleIdentifier"); bundle && !bundle->empty()) {
    body.set("bundle", *bundle);
  }
  setUnlessNil(body, "model", metrics.product());
  const auto identity = platform.defaults.get(kIdentityKey);
  const Dictionary* user = identity ? identity->dictionary() : nullptr;
  if (const Value* identifier = user != nullptr ? user->find(kAppSpecificUserId) : nullptr) {
    body.set(kUserIdentifierKey, *identifier);
  }
  body.set("timestamp", milliseconds(now));
  body.set("uniqueId", uniqueId);
  body.set("deviceLocalTime", metrics.formattedDate(now));
  return body;
}

void CallToAction::perform(ButtonPress press) {
  platform_.mainLoop.post([this, alive = std::weak_ptr<bool>(alive_), press = std::move(press)] {
    if (!alive.expired()) {
      run(press);
    }
  });
}

// Whatever the host's functions throw: a button that was pressed is recorded.
void CallToAction::run(const ButtonPress& press) {
  DeepLinkStatus status = DeepLinkStatus::NoAction;
  afterwards(
      [&] {
        const ButtonAction action = decideAction(press.action);
        act(press, action, status);
        callHost(platform_.notifications, press, statusOf(press, action, status));
      },
      [&] {
        postRecord(post_, platform_.defaults, press);
        if (press.hasMessages) {
          postEvent(press, static_cast<std::int64_t>(status));
        }
      });
}

void CallToAction::act(const ButtonPress& press, const ButtonAction& action, DeepLinkStatus& status) {
  switch (action.kind) {
    case ButtonAction::Kind::None:
      break;
    case ButtonAction::Kind::Identifier:
      status = DeepLinkStatus::Identifier;
      break;
    case ButtonAction::Kind::WebHook:
      status = DeepLinkStatus::WebHook;
      callWebHook(platform_, metrics_, action.text, press.completionBlock, statusOf(press, action, status));
      break;
    case ButtonAction::Kind::Open:
      status = DeepLinkStatus::Refused;  // What is recorded if the host's veto throws.
      status = openUrl(platform_.urlOpener, press, action.text);
      break;
  }
}

}  // namespace kesu
