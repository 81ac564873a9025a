#include "tools/kesu-dev/http/FaultyHandler.h"

#include <chrono>
#include <optional>
#include <string_view>
#include <utility>

#include "tools/kesu-dev/base/Text.h"

namespace kesu::dev {
namespace {

constexpr std::chrono::milliseconds kLookInterval{100};
constexpr std::string_view kGarbage = "\xC3\x28{]\" this is no JSON \x01\xFF";

// What is wrong with how the body is announced, before any of it is read.
std::optional<HttpReply> bodyRefusal(const HttpRequest& request) {
  const bool mayHaveBody = request.method == "POST" || request.method == "PUT";
  if (mayHaveBody && request.header("Content-Length").empty() && request.header("Transfer-Encoding").empty()) {
    return HttpReply::error(411, "a body needs a Content-Length");
  }
  if (lowerAscii(request.header("Content-Type")).starts_with("multipart/form-data")) {
    return HttpReply::error(415, "the body is one JSON object, not a form");
  }
  return std::nullopt;
}

}  // namespace

HttpReply FaultyHandler::handle(HttpRequest& request, const Accept& accept) const {
  if (const auto hit = faults_.take(request.path)) {
    return suffer(*hit, request, accept);
  }
  if (auto refused = bodyRefusal(request)) {
    return std::move(*refused);
  }
  std::string body;
  return request.readBody(body) ? accept(request, body) : HttpReply::error(413, "the body is too long");
}

HttpReply FaultyHandler::suffer(const FaultTable::Hit& hit, HttpRequest& request, const Accept& accept) const {
  const Fault& fault = hit.fault;
  std::string body;
  if (fault.kind != FaultKind::CloseBefore && !request.readBody(body)) {
    return HttpReply::closed();
  }
  if (fault.delay.count() > 0) {
    faults_.waitForRemoval(hit, fault.delay);
  }
  const bool accepts = fault.status < 300;
  switch (fault.kind) {
    case FaultKind::Delay:
      return accept(request, body);
    case FaultKind::Status: {
      HttpReply reply = accepts ? accept(request, body) : HttpReply::error(fault.status, "a fault is switched on");
      reply.status = fault.status;
      return reply;
    }
    case FaultKind::Hang:
      return hang(hit, request);
    case FaultKind::CloseBefore:
    case FaultKind::CloseAfter:
      return HttpReply::closed();
    case FaultKind::LostReply:
      accept(request, body);
      return HttpReply::closed();
    case FaultKind::Garbage: {
      HttpReply reply = accepts ? accept(request, body) : HttpReply();
      reply.status = fault.status;
      reply.body = kGarbage;
      return reply;
    }
    case FaultKind::Redirect: {
      HttpReply reply = HttpReply::error(fault.status, "a fault is switched on");
      reply.headers.emplace_back("Location", fault.location);
      return reply;
    }
  }
  return HttpReply::closed();
}

HttpReply FaultyHandler::hang(const FaultTable::Hit& hit, HttpRequest& request) const {
  while (!request.isGone() && !faults_.waitForRemoval(hit, kLookInterval)) {
  }
  return HttpReply::closed();
}

}  // namespace kesu::dev
