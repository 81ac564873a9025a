#include "messaging/KesuInAppMessagesRequester.h"

#include <utility>

#include "foundation/Objects.h"
#include "records/DefaultsKeys.h"
#include "records/Destinations.h"
#include "records/RecordKeys.h"
#include "records/TimeReference.h"
#include "services/MessageKeys.h"

namespace kesu {
namespace {

constexpr LogPlace kReplyPlace{"KesuInAppMessagesRequester", 158};  // Part of the log text, not of this file.
constexpr std::string_view kMethod = "HTTPMethod";                  // In the dictionary of a request only; never sent.
constexpr double kSecondsPerMinute = 60.0;

std::string extractText(Dictionary& dictionary, std::string_view key) {
  std::string text = textIn(dictionary, key);
  dictionary.remove(key);
  return text;
}

}  // namespace

Dictionary KesuInAppMessagesRequester::request(const ServiceCredentials& who, const char* path, const char* method) {
  Dictionary dictionary = addKakAndKaid(who);
  dictionary.set(k_destinationKeyInDictionary, path);
  dictionary.set(kMethod, method);
  return dictionary;
}

void KesuInAppMessagesRequester::unreadMessagesCountWithCount(const ServiceCredentials& who, Handler handler) {
  postInternalWithDictionary(request(who, "count/", "PUT"), RequestType::Count, std::move(handler));
}

void KesuInAppMessagesRequester::unreadMessagesData(const ServiceCredentials& who, Handler handler) {
  postInternalWithDictionary(request(who, "newUnFetched/", "POST"), RequestType::Headers, std::move(handler));
}

void KesuInAppMessagesRequester::getAllMessages(const ServiceCredentials& who, Handler handler) {
  postInternalWithDictionary(request(who, "getInAppMessages/", "POST"), RequestType::AllMessages, std::move(handler));
}

void KesuInAppMessagesRequester::messageWithMid(const Object& mid, const Object& cid, const ServiceCredentials& who,
                                                Handler handler) {
  Dictionary dictionary = request(who, "getmessage/", "PUT");
  setUnlessNil(dictionary, kMessageIdKey, mid);
  setUnlessNil(dictionary, kCampaignIdKey, cid);
  postInternalWithDictionary(std::move(dictionary), RequestType::Message, std::move(handler));

  Dictionary receipt;  // Without the second identifier, unlike the request.
  setUnlessNil(receipt, kMessageIdKey, mid);
  setUnlessNil(receipt, kCampaignIdKey, cid);
  setUnlessNil(receipt, k_KesuAppKey, who.kak);
  setUnlessNil(receipt, k_KesuAppInstanceId, who.kaid);
  receipt.set(kActionKey, kActionDelivered);
  receipt.set(k_destinationKeyInDictionary, kTableNotifications);
  post_.post(receipt);
}

std::optional<HttpRequest> KesuInAppMessagesRequester::requestFromDictionary(Dictionary& dictionary) {
  std::string method = extractText(dictionary, kMethod);
  const std::string path = extractText(dictionary, k_destinationKeyInDictionary);
  return jsonRequest(dictionary, std::move(method), postURL(path));
}

std::string KesuInAppMessagesRequester::postURL(const std::string& path) {
  const char* base = settings_.isProductionMode() ? "/api/inapp/" : "/api/devmode/inapp/";
  return "https://" + settings_.messagingHost() + base + path;
}

void KesuInAppMessagesRequester::postInternalWithDictionary(Dictionary dictionary, RequestType /*type*/,
                                                            Handler handler) {
  if (auto made = requestFromDictionary(dictionary)) {
    sendServiceRequest(http_, std::move(*made), kReplyPlace, std::move(handler));
  }
}

double KesuInAppMessagesRequester::elapsedSecondsAfterLastRequest() {
  const double last = defaults_.real(kLastFetchDefault);
  if (!(last > 0.0)) {
    return last;
  }
  const double elapsed = timerReferenceAt(clock_.now()) - last;
  return elapsed / kSecondsPerMinute <= 1.0 ? elapsed : last;
}

}  // namespace kesu
