#include "tools/kesu-dev/messages/MessagingService.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "records/RecordKeys.h"
#include "services/MessageKeys.h"
#include "tools/kesu-dev/base/Fields.h"
#include "tools/kesu-dev/base/Text.h"
#include "tools/kesu-dev/http/Arrival.h"
#include "tools/kesu-dev/http/RequestGuard.h"
#include "tools/kesu-dev/messages/ImageSize.h"
#include "tools/kesu-dev/messages/MessageReport.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kHookShown = 400;       // Columns: some lines of a terminal.
constexpr std::size_t kHookBytesKept = 8192;  // 100 of them stay in memory.

std::string instanceOf(const Dictionary& asked) {
  return *asked.findText(k_KesuAppInstanceId) + "\n" + *asked.findText(k_KesuAppInstanceId2);
}

Array partsOf(const std::vector<Message>& messages, Dictionary Message::*part) {
  Array list;
  for (const Message& message : messages) {
    list.emplace_back(message.*part);
  }
  return list;
}

}  // namespace

MessagingService::MessagingService(RecordStore& store, loopback::FaultTable& faults, LogLine logLine)
    : store_(store), faulty_(faults), logLine_(std::move(logLine)) {}

void MessagingService::serve(const std::string& directory, int port) {
  port_ = port;
  directory_ = MessageDirectory(directory, "https://127.0.0.1:" + std::to_string(port));
  read();
}

loopback::Reply MessagingService::handle(loopback::Request& request) {
  const std::string refused =
      refusal({request.header("Host"), request.header("Origin"), request.header("Sec-Fetch-Site")}, port_);
  if (!refused.empty()) {
    return loopback::Reply::error(421, refused);
  }
  return faulty_.handle(request,
                        [this](loopback::Request& whole, const std::string& body) { return answer(whole, body); });
}

loopback::Reply MessagingService::answer(loopback::Request& request, const std::string& body) {
  if (const MessagingRoute* route = findMessagingRoute(request.path)) {
    return answerCall(*route, request, body);
  }
  const bool isGet = request.method == "GET" || request.method == "HEAD";
  if (isGet && request.path.starts_with(MessageDirectory::kImagePath)) {
    return image(std::string_view(request.path).substr(std::string_view(MessageDirectory::kImagePath).size()));
  }
  if (request.method == "POST" && request.path == kHookPath) {
    return takeHook(body);
  }
  return isGet ? loopback::Reply::error(404, "this is kesu-dev's messaging service; its routes are for applications")
               : refuse(request, body, 404, {"the messaging service has no such path"});
}

loopback::Reply MessagingService::answerCall(const MessagingRoute& route, loopback::Request& request,
                                             const std::string& body) {
  const MessagingCheck check = checkMessagingRequest(route, {request.method, request.header("Content-Type"), body});
  if (check.reasons.empty()) {
    return answerGood(route.call, request, body, check.body);
  }
  return refuse(request, body, request.method == route.method ? 400 : 405, check.reasons);
}

loopback::Reply MessagingService::answerGood(MessagingCall call, loopback::Request& request, const std::string& body,
                                             const Dictionary& asked) {
  const std::string instance = instanceOf(asked);
  switch (call) {
    case MessagingCall::Count:
      return jsonReply({{std::string(kMessageCountKey), log_.unfetched(instance, read().messages).size()}});
    case MessagingCall::NewHeaders: {
      const auto fetched = log_.fetch(instance, read().messages, DeliveryLog::Form::Header);
      return jsonReply({{std::string(kHeaderListKey), partsOf(fetched, &Message::header)}});
    }
    case MessagingCall::SingleMessage:
      return singleMessage(request, body, asked);
    case MessagingCall::NewMessages: {
      const auto fetched = log_.fetch(instance, read().messages, DeliveryLog::Form::Whole);
      return jsonReply({{std::string(kMessageListKey), partsOf(fetched, &Message::full)}});
    }
    case MessagingCall::Tags:
      return jsonReply({{std::string(kTagsKey), read().tags}});
  }
  return loopback::Reply::closed();
}

loopback::Reply MessagingService::singleMessage(loopback::Request& request, const std::string& body,
                                                const Dictionary& asked) {
  const MessageReading reading = read();
  const auto found = std::find_if(reading.messages.begin(), reading.messages.end(), [&](const Message& message) {
    return message.mid == *asked.findText(kMessageIdKey) && message.cid == *asked.findText(kCampaignIdKey);
  });
  if (found == reading.messages.end()) {
    return refuse(request, body, 404, {"there is no message with this \"mid\" and \"cid\""});
  }
  log_.fetchOne(instanceOf(asked), *found);
  return jsonReply(found->full);
}

loopback::Reply MessagingService::takeHook(const std::string& body) {
  const std::string kept = validUtf8(std::string_view(body).substr(0, kHookBytesKept));
  log_.addHook({nowMilliseconds(), kept});
  logLine_("web hook called: " + printable(shortened(kept, kHookShown)));
  return jsonReply({{"ok", true}});
}

loopback::Reply MessagingService::refuse(loopback::Request& request, const std::string& body, int status,
                                         const std::vector<std::string>& reasons) {
  StoredRecord record = arrivalOf(request, body);
  record.bodyIsObject = parseObject(body).has_value();
  record.reasons = reasons;
  store_.add(std::move(record));
  return reasonsReply(reasons, status);
}

loopback::Reply MessagingService::image(std::string_view name) const {
  std::optional<std::string> bytes = directory_.image(name);
  if (!bytes) {
    return loopback::Reply::error(404, "there is no such picture");
  }
  loopback::Reply reply;
  reply.contentType = imageType(name);
  reply.headers.emplace_back("Cache-Control", "no-cache");
  reply.body = std::move(*bytes);
  return reply;
}

Dictionary MessagingService::report() {
  return describeMessages(read(), log_, store_.read(RecordStore::Which::Messages, 0, SIZE_MAX / 2));
}

MessageReading MessagingService::read() {
  MessageReading reading = directory_.read();
  const MutexLock lock(mutex_);
  for (const std::string& problem : reading.problems) {
    if (std::find(problems_.begin(), problems_.end(), problem) == problems_.end()) {
      logLine_("skipped " + printable(problem));
    }
  }
  problems_ = reading.problems;
  return reading;
}

}  // namespace kesu::dev
