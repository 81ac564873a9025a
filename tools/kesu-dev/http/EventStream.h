#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tools/kesu-dev/records/RecordStore.h"

namespace kesu::dev {

/// One server-sent event.
struct ServerEvent {
  std::int64_t id = 0;
  std::string name;  // "record" or "reset".
  std::string data;

  friend bool operator==(const ServerEvent&, const ServerEvent&) = default;
};

/// The event as it goes over the wire. `data` must not hold line breaks.
std::string eventText(const ServerEvent& event);

/// Cuts a stream of server-sent events into events, fed in pieces of any size.
class EventParser {
 public:
  /// Takes a piece in and calls `consume` for every event that it completes.
  void feed(std::string_view piece, const std::function<void(const ServerEvent&)>& consume);

 private:
  void readLine(std::string_view line);

  std::string rest_;
  ServerEvent event_;
};

/// Where a follower comes in: behind a record id, or at "now".
std::optional<std::int64_t> resumePoint(std::string_view lastEventId, std::optional<std::string_view> after);

/// Writes every record above `after` (nothing = only those to come) as it arrives, and a "reset" when the records are
/// forgotten, until `write` fails or `isGone` says so. A comment line every 15 s keeps the connection in use.
void followRecords(RecordStore& store, std::optional<std::int64_t> after,
                   const std::function<bool(std::string_view)>& write, const std::function<bool()>& isGone);

}  // namespace kesu::dev
