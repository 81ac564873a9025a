#pragma once

#include <atomic>
#include <string>

#include "tools/kesu-dev/messages/MessagingService.h"
#include "tools/kesu-dev/records/RecordStore.h"
#include "tools/loopback/Faults.h"
#include "tools/loopback/FaultyHandler.h"
#include "tools/loopback/Server.h"

namespace kesu::dev {

/// The collector: takes the records that the library posts, and answers what came.
///
/// | Request | Answer |
/// |---|---|
/// | `POST /collect` (or any path below that is not a route here) | takes one record |
/// | `GET /all` | counts |
/// | `GET /good`, `GET /bad` (`?after=ID&limit=N`) | records, the bad ones with what is wrong |
/// | `GET /` | a page that shows it all live; `GET /help` the same list as this one |
/// | `GET /messages`, `GET /images/NAME` | the messages served, with receipts and button presses; their pictures |
/// | `GET /events` (`?after=ID`, header Last-Event-ID) | server-sent events: "record", "reset" |
/// | `GET /keys` | what every short key means |
/// | `GET`, `POST`, `PUT`, `DELETE /faults` | the faults switched on; adds; replaces those of a route; removes |
/// | `POST /reset` (GET from a browser's address line too) | forgets all records and who fetched which message |
/// | `GET /health` | whether it runs |
///
/// handle() is called on many threads at once.
class Collector {
 public:
  struct Options {
    /// Answer a bad record with 400 instead of 200. Off by default: what the tool thinks of a record must not change
    /// what the library does (it drops a record that is answered 400).
    bool strict = false;
  };

  /// The path handed out for records.
  static constexpr const char* kRecordPath = "/collect";

  /// The references must outlive the collector.
  Collector(RecordStore& store, loopback::FaultTable& faults, MessagingService& messaging, Options options);

  /// Port that the guard compares the Host header with. Set before the first request.
  void servesPort(int port) { port_ = port; }

  loopback::Reply handle(loopback::Request& request);

  /// How many follow the events right now.
  int followers() const { return followers_; }

  /// Lets everything that waits in a handler go on.
  void interrupt();

 private:
  using Route = loopback::Reply (Collector::*)(loopback::Request&);
  struct RouteRow;

  loopback::Reply takeRecord(loopback::Request& request);
  loopback::Reply accept(loopback::Request& request, const std::string& body);

  loopback::Reply page(loopback::Request& request);
  loopback::Reply help(loopback::Request& request);
  loopback::Reply messages(loopback::Request& request);
  loopback::Reply all(loopback::Request& request);
  loopback::Reply good(loopback::Request& request);
  loopback::Reply bad(loopback::Request& request);
  loopback::Reply list(RecordStore::Which which, loopback::Request& request);
  loopback::Reply events(loopback::Request& request);
  loopback::Reply keys(loopback::Request& request);
  loopback::Reply health(loopback::Request& request);
  loopback::Reply reset(loopback::Request& request);
  loopback::Reply listFaults(loopback::Request& request);
  loopback::Reply addFaults(loopback::Request& request);
  loopback::Reply replaceFaults(loopback::Request& request);
  loopback::Reply removeFaults(loopback::Request& request);
  loopback::Reply setFaults(loopback::Request& request, bool replaces);

  static const RouteRow kRoutes[];

  RecordStore& store_;
  loopback::FaultTable& faults_;
  const loopback::FaultyHandler faulty_;
  MessagingService& messaging_;
  const Options options_;
  int port_ = 0;
  std::atomic<int> followers_{0};
};

}  // namespace kesu::dev
