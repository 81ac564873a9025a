#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/AppendLog.h>

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include "outbox/PendingRecord.h"

namespace kesu {

/// The records that wait for delivery, in the order in which they were taken, and how many are under way. Decides
/// which one is next. Confined to its owner.
class OutboxQueue {
 public:
  /// The most records that are handed out and not done with. More would only be copies in the memory of the HTTP
  /// client; fewer would leave its connections idle between two turns.
  static constexpr std::size_t kMostInFlight = 256;

  /// Once there are that many, none is handed out until only these are left: one at a time would wake the worker for
  /// each reply.
  static constexpr std::size_t kFewInFlight = kMostInFlight / 2;

  /// Names a record that was handed out.
  struct Ticket {
    AppendLog::Entry entry;
    bool isLogged = false;                ///< Else the record exists in memory only.
    const Dictionary* context = nullptr;  ///< Of the process that took it; null: this process.
  };

  /// One that waits.
  struct Item {
    Ticket ticket;
    std::unique_ptr<PendingRecord> unlogged;  ///< Set when it is not in the log.
  };

  void add(Item item) { waiting_.push_back(std::move(item)); }

  /// Removes and returns the next record; nothing when none may be handed out now.
  std::optional<Item> takeNext();

  /// Notes that a record that was handed out is done with.
  void finish() {
    --inFlight_;
    isFull_ = isFull_ && inFlight_ > kFewInFlight;
  }

  /// The same for one that waits for retry(); lost when it is not logged.
  void park(const Ticket& ticket);

  /// Lets parked records wait for delivery again, behind the others. Returns whether there was any.
  bool retry();

  /// From now on only what is not logged is handed out: the rest is left to the next process.
  void stop() { isStopped_ = true; }

  /// Counts the records that wait or are under way.
  std::size_t pendingCount() const { return waiting_.size() + inFlight_; }

  /// Whether a record waits that is not logged.
  bool hasUnlogged() const;

  /// Whether takeNext() would return a record.
  bool hasNext() const;

 private:
  std::deque<Item> waiting_;
  std::vector<Ticket> parked_;
  std::size_t inFlight_ = 0;
  bool isFull_ = false;
  bool isStopped_ = false;
};

}  // namespace kesu
