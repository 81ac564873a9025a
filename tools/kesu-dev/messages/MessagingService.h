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
/// It has the routes of messagingRoutes() in both modes, pictures below MessageDirectory::kImagePath, and kHookPath,
/// which notes calls of a web hook.
///
/// A request that an application should not send is answered 4xx with the reasons, and stored as a bad record.
class MessagingService {
 public:
  /// Prints a line for the developer. Called on any thread.
  using LogLine = std::function<void(const std::string& line)>;

  static constexpr const char* kHookPath = "/hook";

  /// Serves nothing yet; the references must outlive the service.
  MessagingService(RecordStore& store, loopback::FaultTable& faults, LogLine logLine);

  /// Serves this directory (empty: no messages); the port becomes part of the addresses of pictures and web hooks.
  /// Reports broken files at once. Call it before the first request.
  void serve(const std::string& directory, int port);

  /// Answers a request. Any thread, several at once.
  loopback::Reply handle(loopback::Request& request);

  /// Returns a picture of the directory, or 404.
  loopback::Reply image(std::string_view name) const;

  /// Describes the messages for `GET /messages`.
  Dictionary report();

  /// Forgets who fetched which message.
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
  const LogLine logLine_;
  MessageDirectory directory_{"", ""};
  int port_ = 0;
  DeliveryLog log_;
  Mutex mutex_;
  std::vector<std::string> problems_ KESU_GUARDED_BY(mutex_);  // Of the last reading: reported already.
};

}  // namespace kesu::dev
