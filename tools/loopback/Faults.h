#pragma once

#include <kesu/foundation/Value.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Mutex.h"
#include "tools/loopback/Exchange.h"

namespace kesu::loopback {

/// What goes wrong on purpose, once the delay is over. "Accepted": the handler did its work with the request.
enum class FaultKind {
  Delay,        ///< Nothing but the delay: the request then succeeds.
  Status,       ///< Answered with `status`; accepted when that is below 300.
  Hang,         ///< Never answered, until the sender goes, the fault is removed or the server stops.
  CloseBefore,  ///< Connection closed before the body is read.
  CloseAfter,   ///< Connection closed after the body was read; not accepted.
  LostReply,    ///< Accepted, then the connection is closed without a reply.
  Garbage,      ///< Accepted when `status` is below 300, and the reply is no JSON.
  Redirect,     ///< Sent on to `location`; not accepted.
  // For tests; they have no JSON form.
  Raw,      ///< Answered with the bytes of `body`, head and all, then the connection is closed; not accepted.
  Reset,    ///< Connection broken with RST after the body was read; not accepted.
  Endless,  ///< Answered with 200 and `length` bytes of filling, made on the fly; not accepted.
  Drip,     ///< Answered with the bytes of `body`, then with those of `drop` every few milliseconds, for as long as the
            ///< sender stays; not accepted.
};

/// One fault, as a developer or a test asks for it.
struct Fault {
  std::string route = "*";  ///< Path it applies to; "*" at the end stands for any rest.
  FaultKind kind = FaultKind::Delay;
  int status = 200;
  std::chrono::milliseconds delay{0};
  std::string location;               ///< For Redirect.
  std::optional<std::string> body;    ///< For Raw and Drip; for Status it replaces the usual body.
  std::string drop;                   ///< For Drip.
  Fields headers;                     ///< For Status: more headers of the reply.
  std::uint64_t length = 0;           ///< For Endless.
  std::optional<std::int64_t> times;  ///< How many requests it still hits; nothing = until it is removed.
  std::int64_t hits = 0;              ///< How many it has hit.

  static Fault reply(int status, std::string body = {});
  static Fault redirect(int status, std::string location);
  static Fault hang();
  static Fault reset();
  static Fault raw(std::string bytes);
  /// A reply that promises `promised` bytes, sends only `sent` and closes.
  static Fault cutBody(std::size_t promised, const std::string& sent);
  /// A reply that calls itself gzip and is not.
  static Fault badGzip();
  static Fault endless(std::uint64_t length);
  static Fault drip(std::string bytes, std::string drop);
};

/// Reads a fault from its JSON form. Returns nothing and one sentence in `error` when it makes no sense.
std::optional<Fault> faultFromJson(const Value& value, std::string& error);

/// The JSON form, with "hits".
Dictionary describeFault(const Fault& fault);

/// Whether a fault for `route` applies to `path`.
bool routeMatches(std::string_view route, std::string_view path);

/// The faults that are switched on. Any thread.
class FaultTable {
 public:
  /// Appends a fault: of several for one path the oldest that has hits left is used.
  void add(Fault fault);

  /// Removes the faults of a route (exactly this text), or all. Requests that wait because of one continue at once.
  void remove(std::string_view route);
  void clear();

  /// A fault that is applied to one request.
  struct Hit {
    Fault fault;
    std::int64_t removals = 0;  // Removals before this hit; only waitForRemoval looks at it.
  };

  /// Returns the fault that hits a request to `path` and counts the hit; nothing when none applies.
  std::optional<Hit> hit(std::string_view path);

  std::vector<Fault> all() const;

  /// How many requests were hit since the start.
  std::int64_t hits() const;

  /// Waits until the time is up or any fault has been removed since the hit. True when one has.
  bool waitForRemoval(const Hit& hit, std::chrono::milliseconds patience) const;

 private:
  mutable Mutex mutex_;
  mutable std::condition_variable_any removed_;
  std::vector<Fault> faults_ KESU_GUARDED_BY(mutex_);
  std::int64_t hits_ KESU_GUARDED_BY(mutex_) = 0;
  std::int64_t removals_ KESU_GUARDED_BY(mutex_) = 0;
};

}  // namespace kesu::loopback
