#pragma once

#include <functional>
#include <string>

#include "tools/loopback/Faults.h"
#include "tools/loopback/Server.h"

namespace kesu::loopback {

/// Answers requests with whatever fault is switched on for their path in between. All services share it, so a fault
/// does the same thing on every route.
class FaultyHandler {
 public:
  /// Answers a request whose body was read. What it does stays done even when a fault then spoils the reply.
  using Accept = std::function<Reply(Request& request, const std::string& body)>;

  /// The table must outlive the handler.
  explicit FaultyHandler(FaultTable& faults) : faults_(faults) {}

  /// Waits as long as the fault says. Any thread, several at once.
  Reply handle(Request& request, const Accept& accept) const;

 private:
  Reply suffer(const FaultTable::Hit& hit, Request& request, const Accept& accept) const;
  Reply hang(const FaultTable::Hit& hit, Request& request) const;

  FaultTable& faults_;
};

}  // namespace kesu::loopback
