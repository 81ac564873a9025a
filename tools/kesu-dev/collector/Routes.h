#pragma once

#include <atomic>
#include <span>
#include <string_view>

#include "tools/kesu-dev/messages/MessagingService.h"
#include "tools/kesu-dev/records/RecordStore.h"
#include "tools/loopback/Faults.h"
#include "tools/loopback/Server.h"

namespace kesu::dev {

/// What the routes of a collector work with.
struct CollectorParts {
  RecordStore& store;
  loopback::FaultTable& faults;
  MessagingService& messaging;
  const bool strict;              // See Collector::Options.
  std::atomic<int> followers{0};  // Clients that follow the events.
};

/// A route of the collector.
struct Route {
  std::string_view method;
  std::string_view path;      // A trailing "*" matches any rest.
  std::string_view sentence;  // What it does, for `GET /help`.
  loopback::Reply (*answer)(CollectorParts& parts, loopback::Request& request);
};

/// The table of all routes: it dispatches requests, and `GET /help` prints it.
std::span<const Route> collectorRoutes();

/// Checks a posted record and stores it, or applies the fault that is switched on for its path.
loopback::Reply storeRecord(CollectorParts& parts, loopback::Request& request);

}  // namespace kesu::dev
