#include "tools/loopback/FaultyHandler.h"

#include <strings.h>

#include <chrono>
#include <optional>
#include <string_view>
#include <utility>

namespace kesu::loopback {
namespace {

constexpr std::chrono::milliseconds kLookInterval{100};
constexpr std::string_view kForm = "multipart/form-data";
constexpr std::string_view kGarbage = "\xC3\x28{]\" this is no JSON \x01\xFF";

// What is wrong with how the body is announced, before any of it is read.
std::optional<Reply> bodyRefusal(const Request& request) {
  const bool mayHaveBody = request.method == "POST" || request.method == "PUT";
  if (mayHaveBody && request.header("Content-Length").empty() && request.header("Transfer-Encoding").empty()) {
    return Reply::error(411, "a body needs a Content-Length");
  }
  const std::string_view type = request.header("Content-Type");
  if (type.size() >= kForm.size() && strncasecmp(type.data(), kForm.data(), kForm.size()) == 0) {
    return Reply::error(415, "the body is one JSON object, not a form");
  }
  return std::nullopt;
}

}  // namespace

Reply FaultyHandler::handle(Request& request, const Accept& accept) const {
  if (const auto hit = faults_.take(request.path)) {
    return suffer(*hit, request, accept);
  }
  if (auto refused = bodyRefusal(request)) {
    return std::move(*refused);
  }
  std::string body;
  return request.readBody(body) ? accept(request, body) : Reply::error(413, "the body is too long");
}

Reply FaultyHandler::suffer(const FaultTable::Hit& hit, Request& request, const Accept& accept) const {
  const Fault& fault = hit.fault;
  std::string body;
  if (fault.kind != FaultKind::CloseBefore && !request.readBody(body)) {
    return Reply::closed();
  }
  if (fault.delay.count() > 0) {
    faults_.waitForRemoval(hit, fault.delay);
  }
  const bool accepts = fault.status < 300;
  switch (fault.kind) {
    case FaultKind::Delay:
      return accept(request, body);
    case FaultKind::Status: {
      Reply reply = accepts ? accept(request, body) : Reply::error(fault.status, "a fault is switched on");
      reply.status = fault.status;
      return reply;
    }
    case FaultKind::Hang:
      return hang(hit, request);
    case FaultKind::CloseBefore:
    case FaultKind::CloseAfter:
      return Reply::closed();
    case FaultKind::LostReply:
      accept(request, body);
      return Reply::closed();
    case FaultKind::Garbage: {
      Reply reply = accepts ? accept(request, body) : Reply();
      reply.status = fault.status;
      reply.body = kGarbage;
      return reply;
    }
    case FaultKind::Redirect: {
      Reply reply = Reply::error(fault.status, "a fault is switched on");
      reply.headers.emplace_back("Location", fault.location);
      return reply;
    }
  }
  return Reply::closed();
}

Reply FaultyHandler::hang(const FaultTable::Hit& hit, Request& request) const {
  while (!request.isGone() && !faults_.waitForRemoval(hit, kLookInterval)) {
  }
  return Reply::closed();
}

}  // namespace kesu::loopback
