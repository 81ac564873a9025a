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

/// Sends the inbox's requests to the messaging service, and the receipt of a fetched message to the collector. Keeps no
/// state. Any thread; handlers are called on the main loop, with the parsed reply or nil: see handleServiceReply() for
/// how often. A body that cannot be JSON is not sent, and its handler not called.
class KesuInAppMessagesRequester {
 public:
  using Handler = ServiceReplyHandler;

  KesuInAppMessagesRequester(HttpClient& http, UserDefaults& defaults, Clock& clock, DeploymentSettings& settings,
                             KesuPost& post)
      : http_(http), defaults_(defaults), clock_(clock), settings_(settings), post_(post) {}

  /// What a request asks for. Every reply is handled alike.
  enum class RequestType { Count = 0, Headers = 1, Message = 2, AllMessages = 3 };

  /// Asks how many messages are new: "count" of the reply. `who` names the application and the installation.
  /// [unreadMessagesCountWithCount:withKaid:withKaid2:withCompletionHandler:]
  void unreadMessagesCountWithCount(const ServiceCredentials& who, Handler handler);

  /// Asks for the headers of new messages: "metadatalist".
  /// [unreadMessagesData:withKaid:withKaid2:withCompletionHandler:]
  void unreadMessagesData(const ServiceCredentials& who, Handler handler);

  /// Asks for one message, which is the whole reply, and posts the receipt "delivered" to the collector without waiting
  /// for the reply. Missing identifiers are left out of both.
  /// Kept: the receipt is sent even if the request fails; the service counts deliveries this way.
  /// [messageWithMid:andCid:withKak:withKaid:withKaid2:withCompletionHandler:]
  void messageWithMid(const Object& mid, const Object& cid, const ServiceCredentials& who, Handler handler);

  /// Asks for the new messages in full: "payloadlist". [getAllMessages:withKaid:withKaid2:withCompletionHandler:]
  void getAllMessages(const ServiceCredentials& who, Handler handler);

  /// Extracts "dest" (the path) and "HTTPMethod" from the dictionary and makes a request with the rest as its JSON
  /// body. Nothing when that cannot be JSON. [requestFromDictionary:]
  std::optional<HttpRequest> requestFromDictionary(Dictionary& dictionary);

  /// Returns the URL of a path such as "count/" on the messaging service, for production or development. [postURL:]
  std::string postURL(const std::string& path);

  /// Sends the dictionary as a request (see requestFromDictionary()). [postInternalWithDictionary:forType:forHandler:]
  void postInternalWithDictionary(Dictionary dictionary, RequestType type, Handler handler);

  // Owed to the agreed interface; no caller inside the library.

  /// Returns the seconds since the time stored under "kesuInAppFetchAfterLastRequest", which is on the clock of
  /// Kesu::timerReference. [elapsedSecondsAfterLastRequest]
  /// Kept: after more than a minute, and without a stored time, the stored value itself is returned. Nothing writes it.
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
