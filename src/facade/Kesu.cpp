#include <kesu/Kesu.h>
#include <kesu/events/KesuIdentity.h>
#include <kesu/foundation/Exception.h>
#include <kesu/records/Constants.h>

#include <string>
#include <utility>

#include "facade/Wiring.h"
#include "messaging/ButtonClicks.h"
#include "records/TimeReference.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

KesuInbox& initializedInbox() {
  if (!Kesu::isSDKInitialized()) {
    throw InternalInconsistencyException(std::string(k_KesuAppKeyMissingException));
  }
  return wiring().inbox;
}

}  // namespace

Kesu::Kesu() {
  throw InternalInconsistencyException(std::string(k_KesuLibraryInitializationException));
}

Kesu& Kesu::sharedKesu() {
  static Kesu shared{Shared{}};
  wiring();  // Its observers are what a host calls this for.
  return shared;
}

void Kesu::initialize(const Object& key) {
  initialize(key, wiring().settings.logLevel());
}

void Kesu::initialize(const Object& key, std::int64_t logThrottling) {
  Kesu::logThrottling(logThrottling);
  const std::string* text = key ? key->text() : nullptr;
  wiring().manager.initializeWithKey(text != nullptr ? *text : "");
  // On the worker: reading an inbox of thousands of messages takes longer than a frame.
  wiring().inbox.readAhead(wiring().platform.background);
}

void Kesu::logThrottling(std::int64_t level) {
  KesuPriorityLogger::sharedLogger().setLogLevel(static_cast<std::uint64_t>(level));
}

bool Kesu::isSDKInitialized() {
  return wiring().manager.isSDKInitialized();
}

double Kesu::timerReference() {
  return timerReferenceAt(Platform::current().clock.now());
}

bool Kesu::IsProductionMode() {
  return wiring().settings.isProductionMode();
}

void Kesu::setUserIdentifer(const Object& identifier) {
  KesuIdentity::setUserIdentifer(identifier);
}

void Kesu::resetUserIdentifer() {
  KesuIdentity::resetUserIdentifer();
}

void Kesu::updateScreenFlowForScenesWithName(const Object& name, double seconds) {
  if (const std::string* text = name ? name->text() : nullptr) {
    wiring().manager.updateScreenFlowForScenes(*text, seconds);
  }
}

std::string Kesu::hash(const std::string& text) {
  return hashStr(text) + "##";
}

void Kesu::setRemoteNotificationDeviceToken(const Data& token) {
  wiring().manager.remoteNotifications().setRemoteNotificationDeviceToken(token);
}

void Kesu::processReceivedRemoteNotification(const Dictionary& userInfo) {
  processReceivedRemoteNotificationWithId(nil, userInfo);
}

void Kesu::processReceivedRemoteNotificationWithId(const Object& identifier, const Dictionary& userInfo) {
  wiring().manager.remoteNotifications().processReceivedRemoteNotification(identifier, userInfo);
}

void Kesu::countNewUnFetched(CountHandler handler) {
  initializedInbox().kesu_countNewUnFetched(std::move(handler));
}

void Kesu::getMessageHeadersForType(KesuInAppMessageType type, ObjectHandler handler) {
  initializedInbox().kesu_getMessageHeadersForType(type, std::move(handler));
}

void Kesu::getMessageBodyWithCampaignID(const Object& campaignID, const Object& messageID, ObjectHandler handler) {
  initializedInbox().kesu_getMessageWithContentID(campaignID, messageID, std::move(handler));
}

void Kesu::getMessagesForType(KesuInAppMessageType type, ObjectHandler handler) {
  initializedInbox().kesu_getMessagesForType(type, std::move(handler));
}

Object Kesu::previousReadMessages() {
  Object previous = wiring().inbox.kesu_previousReadMessages();
  // Kept: the inbox stores "" for none; hosts get nil.
  return previous && previous->text() != nullptr ? Object() : previous;
}

NotificationCenter::Token Kesu::registerForButtonClickOnInAppMessageWithSelector(
    std::function<void(const KesuInAppStatus&)> handler) {
  return handler ? observeButtonClicks(NotificationCenter::defaultCenter(), std::move(handler)) : 0;
}

}  // namespace kesu
