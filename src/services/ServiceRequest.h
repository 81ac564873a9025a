#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/HttpClient.h>

#include <functional>
#include <optional>
#include <span>
#include <string>

#include "foundation/Json.h"

namespace kesu {

/// Receives the parsed JSON reply of a service, or nil.
using ServiceReplyHandler = std::function<void(const Object& reply)>;

/// Makes a request with this dictionary as compact JSON and the headers for it ("Content-Type", "Accept-Encoding",
/// "Content-Length"). Nothing when the body cannot be JSON: silently for numbers and kinds that JSON does not know;
/// with one level-0 log line for texts that are not UTF-8 and for too deep nesting. Any thread.
std::optional<HttpRequest> jsonRequest(const Dictionary& body, std::string method, std::string url);

/// The same for a body that is not one dictionary; the headers are added behind those that `request` has.
std::optional<HttpRequest> jsonRequest(std::span<const JsonField> body, HttpRequest request);

/// Names a log line: the source and line that people search for. They do not follow the code when it moves.
struct LogPlace {
  const char* source;
  unsigned long line;
};

/// Handles a reply of a service. After an error, without a reply and for any status but 2xx: one level-3 log line
/// and handler(nil). Independently of that, when there is a body and the status is 2xx: handler(parsed body), nil when
/// it is not JSON.
/// Kept: the two are separate, so that an error beside a 2xx reply with a body calls the handler twice, and a 2xx reply
/// without body and error never. An empty handler is not called.
void handleServiceReply(const HttpReply& reply, const LogPlace& place, const ServiceReplyHandler& handler);

/// Sends a request; its reply is handled by handleServiceReply() on the main loop.
void sendServiceRequest(HttpClient& http, HttpRequest request, const LogPlace& place, ServiceReplyHandler handler);

}  // namespace kesu
