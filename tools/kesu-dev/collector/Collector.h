#pragma once

#include "tools/kesu-dev/collector/Routes.h"

namespace kesu::dev {

/// The collector: stores the records that the library posts, and lists them. Routes.cpp has the table of its routes.
class Collector {
 public:
  struct Options {
    /// Answer a bad record with 400 instead of 200. Off by default: the tool's opinion of a record must not change
    /// what the library does (it drops records answered 400).
    bool strict = false;
  };

  /// The path handed out for records.
  static constexpr const char* kRecordPath = "/collect";

  /// The references must outlive the collector.
  Collector(RecordStore& store, loopback::FaultTable& faults, MessagingService& messaging, Options options);

  /// Sets the port that the Host header of a request must name. Call it before the first request.
  void servesPort(int port) { port_ = port; }

  /// Answers a request. Any thread, several at once.
  loopback::Reply handle(loopback::Request& request);

  /// How many clients follow the events.
  int followers() const { return parts_.followers; }

  /// Wakes every handler that waits: hanging requests and followers of events.
  void interrupt();

 private:
  CollectorParts parts_;
  int port_ = 0;
};

}  // namespace kesu::dev
