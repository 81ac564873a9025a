#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/HttpClient.h>
#include <kesu/platform/UserDefaults.h>

#include <optional>
#include <string>

#include "delivery/KesuPost.h"
#include "services/DeploymentSettings.h"
#include "services/ServiceCredentials.h"
#include "services/ServiceRequest.h"

namespace kesu {

/// Turns the questions of the inbox into requests to the messaging service, and sends the receipt of a fetched message
/// to the collector. Keeps no state. Any thread; handlers are called on the main loop, with the parsed reply or nil:
/// see handleServiceReply() for how often. A body that cannot be JSON sends nothing and calls nobody.
class KesuInAppMessagesRequester {
 public:
  using Handler = ServiceReplyHandler;

  KesuInAppMessagesRequester(HttpClient& http, UserDefaults& defaults, Clock& clock, DeploymentSettings& settings,
                             KesuPost& post)
      : http_(http), defaults_(defaults), clock_(clock), settings_(settings), post_(post) {}

  /// What kind of question a request asks. The reply is handled alike for all.
  enum class RequestType { Count = 0, Headers = 1, Message = 2, AllMessages = 3 };

  /// [unreadMessagesCountWithCount:withKaid:withKaid2:withCompletionHandler:] How many messages are new: "count" of the
  /// reply. `who` names the application and the installation.
  void unreadMessagesCountWithCount(const ServiceCredentials& who, Handler handler);

  /// [unreadMessagesData:withKaid:withKaid2:withCompletionHandler:] The headers of new messages: "metadatalist".
  void unreadMessagesData(const ServiceCredentials& who, Handler handler);

  /// [messageWithMid:andCid:withKak:withKaid:withKaid2:withCompletionHandler:] One message, the whole reply; right
  /// behind the request, not waiting for its reply, the receipt "delivered" goes to the collector. Missing identifiers
  /// are left out of both. Kept: the receipt goes even if the fetch fails later; the service counts deliveries so.
  void messageWithMid(const Object& mid, const Object& cid, const ServiceCredentials& who, Handler handler);

  /// [getAllMessages:withKaid:withKaid2:withCompletionHandler:] The new messages in full: "payloadlist".
  void getAllMessages(const ServiceCredentials& who, Handler handler);

  /// [requestFromDictionary:] Takes "dest" (the path) and "HTTPMethod" out of the dictionary and makes a request with
  /// the rest as its JSON body. Nothing when it cannot be JSON.
  std::optional<HttpRequest> requestFromDictionary(Dictionary& dictionary);

  /// [postURL:] The URL of a path such as "count/" on the messaging service, of production or of development.
  std::string postURL(const std::string& path);

  /// [postInternalWithDictionary:forType:forHandler:] Sends the dictionary as a request (see above).
  void postInternalWithDictionary(Dictionary dictionary, RequestType type, Handler handler);

  /// [elapsedSecondsAfterLastRequest] Seconds since the time kept under "kesuInAppFetchAfterLastRequest" (which is on
  /// the clock of Kesu::timerReference).
  /// Kept: after more than a minute, and where no time is kept, the kept value itself is returned. Nothing writes it.
  double elapsedSecondsAfterLastRequest();

 private:
  Dictionary request(const ServiceCredentials& who, const char* path, const char* method);

  HttpClient& http_;
  UserDefaults& defaults_;
  Clock& clock_;
  DeploymentSettings& settings_;
  KesuPost& post_;
};

}  // namespace kesu
