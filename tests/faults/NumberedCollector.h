#pragma once

#include <kesu/foundation/Value.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "foundation/Mutex.h"
#include "tools/loopback/Server.h"

namespace kesu::testing {

/// A collector on 127.0.0.1 that counts what it accepts: by the numbers of kesu_test_host and by identifier. Any
/// thread, but for setMode().
class NumberedCollector {
 public:
  enum class Mode {
    Up,        ///< Accepts every record.
    Refusing,  ///< Takes no connection.
    Failing,   ///< Answers 500.
    Hanging    ///< Never answers.
  };

  NumberedCollector();
  ~NumberedCollector();

  NumberedCollector(const NumberedCollector&) = delete;
  NumberedCollector& operator=(const NumberedCollector&) = delete;

  /// One thread.
  void setMode(Mode mode);

  std::string url() const { return "http://127.0.0.1:" + std::to_string(server_.port()) + "/"; }

  /// Waits until each of the numbers was accepted; returns those that were not, once the smallest of them has been
  /// waited for during `seconds`.
  std::set<std::int64_t> missingAfter(const std::set<std::int64_t>& numbers, double seconds);

  /// How often each number was accepted, and each record by its "msg_id".
  std::map<std::int64_t, int> byNumber();
  std::map<std::string, int> byIdentifier();

  /// The accepted records that have none, in the order of their arrival. Waits for `count` of them at most `seconds`.
  std::vector<Dictionary> others(std::size_t count = 0, double seconds = 0);

  /// The identity of the installation in each record with a number.
  std::map<std::int64_t, std::string> identities();

  /// What was accepted since the last round.
  struct Round {
    std::size_t copies = 0;   ///< Records that an earlier round had accepted.
    std::size_t repeats = 0;  ///< Records accepted more than once in this round.
  };

  /// Ends a round, once every connection has ended: its senders must be gone.
  Round endRound();

 private:
  loopback::Reply handle(loopback::Request& request);
  void accept(const std::string& body) KESU_REQUIRES(mutex_);

  Mutex mutex_;
  std::condition_variable_any changed_;
  Mode mode_ KESU_GUARDED_BY(mutex_) = Mode::Up;
  std::map<std::int64_t, int> byNumber_ KESU_GUARDED_BY(mutex_);
  std::map<std::string, int> byIdentifier_ KESU_GUARDED_BY(mutex_);
  std::vector<Dictionary> others_ KESU_GUARDED_BY(mutex_);
  std::map<std::int64_t, std::string> identities_ KESU_GUARDED_BY(mutex_);
  std::set<std::string> ofThisRound_ KESU_GUARDED_BY(mutex_);
  Round round_ KESU_GUARDED_BY(mutex_);
  loopback::Server server_;
};

}  // namespace kesu::testing
