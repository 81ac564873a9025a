#pragma once

#include <functional>
#include <string>

#include "tools/kesu-dev/http/Faults.h"
#include "tools/kesu-dev/http/HttpServer.h"

namespace kesu::dev {

/// Answers requests with whatever fault is switched on for their path in between. All services share it, so a fault
/// does the same thing on every route.
class FaultyHandler {
 public:
  /// Answers a request whose body was read. What it does stays done even when a fault then spoils the reply.
  using Accept = std::function<HttpReply(HttpRequest& request, const std::string& body)>;

  /// The table must outlive the handler.
  explicit FaultyHandler(FaultTable& faults) : faults_(faults) {}

  /// Waits as long as the fault says. Any thread, several at once.
  HttpReply handle(HttpRequest& request, const Accept& accept) const;

 private:
  HttpReply suffer(const FaultTable::Hit& hit, HttpRequest& request, const Accept& accept) const;
  HttpReply hang(const FaultTable::Hit& hit, HttpRequest& request) const;

  FaultTable& faults_;
};

}  // namespace kesu::dev
