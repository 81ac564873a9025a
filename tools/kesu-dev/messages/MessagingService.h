#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Mutex.h"
#include "tools/kesu-dev/messages/DeliveryLog.h"
#include "tools/kesu-dev/messages/MessageDirectory.h"
#include "tools/kesu-dev/messages/MessagingCheck.h"
#include "tools/kesu-dev/records/RecordStore.h"
#include "tools/loopback/FaultyHandler.h"
#include "tools/loopback/Server.h"

namespace kesu::dev {

/// The messaging and personalization service: answers applications from a directory of messages.
///
/// | Request | Answer |
/// |---|---|
/// | the routes of messagingRoutes(), in both modes | what the installation has not fetched yet; one message; the tags
/// | | `GET /images/NAME` | a picture of the directory | | `POST /hook` | takes a call of a web hook and notes it |
///
/// A request that an application should not send is answered 4xx with what is wrong, and noted among the bad records.
/// handle() is called on many threads at once.
class MessagingService {
 public:
  /// A line for the developer's terminal. Called on any thread.
  using Say = std::function<void(const std::string& line)>;

  static constexpr const char* kImagePath = "/images/";
  static constexpr const char* kHookPath = "/hook";

  /// Serves nothing yet; the references must outlive the service.
  MessagingService(RecordStore& store, loopback::FaultTable& faults, Say say);

  /// Serves this directory (empty: no messages) on that port from now on; the port stands in the addresses of pictures
  /// and web hooks. Tells of broken files at once. Before the first request.
  void serve(const std::string& directory, int port);

  loopback::Reply handle(loopback::Request& request);

  /// A picture of the directory, or 404.
  loopback::Reply image(std::string_view name) const;

  /// All that there is to know about the messages, for `GET /messages`.
  Dictionary report();

  /// Nothing was fetched by anybody, from here on.
  void reset() { log_.clear(); }

 private:
  loopback::Reply answer(loopback::Request& request, const std::string& body);
  loopback::Reply answerCall(const MessagingRoute& route, loopback::Request& request, const std::string& body);
  loopback::Reply answerGood(MessagingCall call, loopback::Request& request, const std::string& body,
                             const Dictionary& asked);
  loopback::Reply singleMessage(loopback::Request& request, const std::string& body, const Dictionary& asked);
  loopback::Reply takeHook(const std::string& body);
  loopback::Reply refuse(loopback::Request& request, const std::string& body, int status,
                         const std::vector<std::string>& reasons);
  MessageReading read();

  RecordStore& store_;
  const loopback::FaultyHandler faulty_;
  const Say say_;
  MessageDirectory directory_{"", ""};
  int port_ = 0;
  DeliveryLog log_;
  Mutex mutex_;
  std::vector<std::string> problems_ KESU_GUARDED_BY(mutex_);  // Of the last reading: told already.
};

}  // namespace kesu::dev
