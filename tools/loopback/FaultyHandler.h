#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "tools/loopback/Exchange.h"
#include "tools/loopback/Faults.h"

namespace kesu::loopback {

/// Answers a request whose body was read. What it does stays done even when a fault then spoils the reply.
using Accept = std::function<Reply(Request& request, const std::string& body)>;

/// Waits that long at most; returns true as soon as the fault is over.
using WaitForEnd = std::function<bool(std::chrono::milliseconds patience)>;

/// Answers a request as the fault wants it; blocks for delays and hanging requests. The reply may still call
/// `waitForEnd` while it is written.
Reply applyFault(const Fault& fault, Request& request, const Accept& accept, const WaitForEnd& waitForEnd);

/// Answers requests, with whatever fault is switched on for their path in between. All services share it, so a fault
/// does the same thing on every route.
class FaultyHandler {
 public:
  /// The table must outlive the handler.
  explicit FaultyHandler(FaultTable& faults) : faults_(faults) {}

  /// Waits as long as the fault says. Any thread, several at once.
  Reply handle(Request& request, const Accept& accept) const;

 private:
  FaultTable& faults_;
};

}  // namespace kesu::loopback
