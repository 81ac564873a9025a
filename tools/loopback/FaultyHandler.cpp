#include "tools/loopback/FaultyHandler.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

namespace kesu::loopback {
namespace {

constexpr std::chrono::milliseconds kLookInterval{100};  // How late it is noticed that a sender has gone.
constexpr std::chrono::milliseconds kDripInterval{10};
constexpr std::size_t kFillingBytes = std::size_t{64} * 1024;
constexpr std::string_view kForm = "multipart/form-data";
constexpr std::string_view kGarbage = "\xC3\x28{]\" this is no JSON \x01\xFF";
constexpr const char* kErrorText = "a fault is switched on";

// What is wrong with how the body is announced, before any of it is read.
std::optional<Reply> bodyRefusal(const Request& request) {
  const bool mayHaveBody = request.method == "POST" || request.method == "PUT";
  if (mayHaveBody && request.header("Content-Length").empty() && request.header("Transfer-Encoding").empty()) {
    return Reply::error(411, "a body needs a Content-Length");
  }
  if (equalIgnoringCase(request.header("Content-Type").substr(0, kForm.size()), kForm)) {
    return Reply::error(415, "the body is one JSON object, not a form");
  }
  return std::nullopt;
}

// The usual reply when the fault lets the request through, else a text for people; with the status of the fault.
Reply replyOf(const Fault& fault, Request& request, const Accept& accept, const std::string& body) {
  Reply reply = fault.status < 300 ? accept(request, body) : Reply::error(fault.status, kErrorText);
  reply.status = fault.status;
  reply.headers.insert(reply.headers.end(), fault.headers.begin(), fault.headers.end());
  return reply;
}

Reply endlessReply(std::uint64_t length) {
  Reply reply;
  reply.streamLength = length;
  reply.stream = [length](const Reply::Write& write) {
    const std::string filling(kFillingBytes, 'x');
    std::uint64_t left = length;
    while (left > 0 && write(std::string_view(filling).substr(0, left))) {
      left -= std::min<std::uint64_t>(left, filling.size());
    }
  };
  return reply;
}

}  // namespace

Reply applyFault(const Fault& fault, Request& request, const Accept& accept, const WaitForEnd& waitForEnd) {
  std::string body;
  if (fault.kind != FaultKind::CloseBefore && !request.readBody(body)) {
    return Reply::closed();
  }
  if (fault.delay.count() > 0) {
    waitForEnd(fault.delay);
  }
  Reply reply;
  switch (fault.kind) {
    case FaultKind::Delay:
      return accept(request, body);
    case FaultKind::Status:
      reply = replyOf(fault, request, accept, body);
      reply.body = fault.body.value_or(std::move(reply.body));
      return reply;
    case FaultKind::Hang:
      while (!request.isGone() && !waitForEnd(kLookInterval)) {
      }
      return Reply::closed();
    case FaultKind::CloseBefore:
    case FaultKind::CloseAfter:
      return Reply::closed();
    case FaultKind::LostReply:
      accept(request, body);
      return Reply::closed();
    case FaultKind::Garbage:
      reply = replyOf(fault, request, accept, body);
      reply.contentType = "application/json";  // Which it is not.
      reply.body = kGarbage;
      return reply;
    case FaultKind::Redirect:
      reply = Reply::error(fault.status, kErrorText);
      reply.headers.emplace_back("Location", fault.location);
      return reply;
    case FaultKind::Raw:
      reply.form = Reply::Form::Raw;
      reply.body = fault.body.value_or("");
      return reply;
    case FaultKind::Reset:
      reply.form = Reply::Form::Reset;
      return reply;
    case FaultKind::Endless:
      return endlessReply(fault.length);
    case FaultKind::Drip:
      reply.form = Reply::Form::Raw;
      reply.body = fault.body.value_or("");
      reply.stream = [drop = fault.drop, waitForEnd](const Reply::Write& write) {
        while (write(drop) && !waitForEnd(kDripInterval)) {
        }
      };
      return reply;
  }
  return Reply::closed();
}

Reply FaultyHandler::handle(Request& request, const Accept& accept) const {
  if (const auto hit = faults_.hit(request.path)) {
    return applyFault(hit->fault, request, accept, [this, hit = *hit](std::chrono::milliseconds patience) {
      return faults_.waitForRemoval(hit, patience);
    });
  }
  if (auto refused = bodyRefusal(request)) {
    return std::move(*refused);
  }
  std::string body;
  return request.readBody(body) ? accept(request, body) : Reply::error(413, "the body is too long");
}

}  // namespace kesu::loopback
