#pragma once

#include <kesu/platform/AppendLog.h>
#include <kesu/platform/BackgroundQueue.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/Random.h>
#include <kesu/platform/UserDefaults.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "foundation/Mutex.h"
#include "outbox/EntryFiles.h"
#include "outbox/OutboxEntry.h"
#include "outbox/OutboxHandOver.h"
#include "outbox/OutboxJournal.h"
#include "outbox/OutboxQueue.h"
#include "outbox/PendingRecord.h"

namespace kesu {

/// Takes every record, and every change of the texts that grow with a session, into the append log before the call
/// returns, and hands the records out in that order, on the background queue, until each one is done with.
///
/// What a former process left is handed out first; what it logged and did not write to the user defaults is applied by
/// open(). A record that the log cannot take waits in memory; changes that it cannot take are synchronized at once.
/// Any thread, unless stated otherwise. In a forked child nothing is taken.
class Outbox {
 public:
  /// Names a record that was handed out.
  using Ticket = OutboxQueue::Ticket;

  /// A record that is handed out.
  struct Delivery {
    PendingRecord record;
    Ticket ticket;
    const Dictionary* context = nullptr;  ///< What setContext() said in the process that took it; null: this process.
  };

  Outbox(AppendLog& log, UserDefaults& defaults, BackgroundQueue& background, Clock& clock, Random& random)
      : log_(log),
        defaults_(defaults),
        background_(background),
        clock_(clock),
        random_(random),
        handOver_(log, defaults),
        journal_(log, defaults) {}

  /// Sets what sends a record that is handed out: called on the background queue, one at a time. Until then records
  /// wait. Once; main thread.
  void startDelivery(std::function<void(Delivery)> deliver);

  /// Reads what former processes left, in the first call. Call it before the user defaults that it may change are read.
  void open();

  /// Sets what a later process needs to complete the records of this one: identity and versions.
  void setContext(const Dictionary& context);

  /// Takes a record; its moment and identifier are set here. `entries` are those of the record, with one replaced.
  /// `changes` are made in the same step.
  void add(const PendingRecord& frame, const Dictionary& entries,
           const std::optional<Replacement>& replacement = std::nullopt, std::span<const DefaultsChange> changes = {});

  /// The same for entries and changes that are made from the user defaults as they stand: `build` adds to both, while
  /// nothing else is taken. It must not call the outbox.
  void addBuilt(const PendingRecord& frame, const std::function<void(Dictionary& entries, DefaultsChanges&)>& build);

  /// Makes changes without a record.
  void change(std::span<const DefaultsChange> changes);

  /// Ends the life of a record: it was delivered, refused for good, or its store file is written.
  void finish(const Ticket& ticket);

  /// Leaves a logged record to the next process, because this one ends. Those that wait are left as well.
  void leave();

  /// Keeps a record that could be neither delivered nor stored: it is handed out again after retryParked(), or by the
  /// next process. One that is not logged is lost.
  void park(const Ticket& ticket);

  /// Lets parked records wait for delivery again. Returns whether there was any.
  bool retryParked();

  /// From now on records are only logged, so that an end waits for nobody who goes on posting. What is not logged is
  /// still handed out. Returns whether everything is logged: an end then need not wait for the background queue.
  bool beginEnd();

  /// Writes the changes to the user defaults and hands what is new to the disk, without waiting for it.
  void finishEnd();

  /// Hands everything taken so far to the disk, on the background queue.
  void handOverSoon();

  /// Sets the files that must be on the disk before the log is. Not owned. Once, before anything else.
  void setEntryFiles(EntryFiles& files) { handOver_.setEntryFiles(files); }

  /// Counts the records that wait for delivery or are under way, without those that are parked. For the benchmark,
  /// which waits for them.
  std::size_t pendingCount();

  /// Whether beginEnd() was called.
  bool isEnding();

  bool isInForkedChild() const { return log_.isInForkedChild(); }

 private:
  /// What follows from a step once the lock is released.
  struct Consequences {
    bool awaitsDefaults = false;
    bool delivers = false;
    bool prepares = false;
    bool synchronizes = false;
  };

  void openLocked(Consequences& then) KESU_REQUIRES(mutex_);
  void take(const PendingRecord& frame, const Dictionary& entries, const std::optional<Replacement>& replacement,
            std::span<const DefaultsChange> changes, Consequences& then) KESU_REQUIRES(mutex_);
  void planDelivery(Consequences& then) KESU_REQUIRES(mutex_);
  void planHandOver() KESU_REQUIRES(mutex_);
  void carryOut(const Consequences& then);
  void catchUp();
  void prepare();
  void deliverWaiting();
  bool deliverNext();
  std::optional<PendingRecord> readLogged(const AppendLog::Entry& entry);
  void handOver(bool isThorough);

  AppendLog& log_;
  UserDefaults& defaults_;
  BackgroundQueue& background_;
  Clock& clock_;
  Random& random_;
  OutboxHandOver handOver_;
  std::function<void(Delivery)> deliver_;  // Set before anything is scheduled.

  Mutex mutex_;  // Locked before those of the log and of the user defaults; not while these are synchronized.
  OutboxJournal journal_ KESU_GUARDED_BY(mutex_);
  OutboxQueue queue_ KESU_GUARDED_BY(mutex_);
  bool isOpen_ KESU_GUARDED_BY(mutex_) = false;
  bool isScheduled_ KESU_GUARDED_BY(mutex_) = false;
  bool isHandOverPlanned_ KESU_GUARDED_BY(mutex_) = false;
  bool isPreparing_ KESU_GUARDED_BY(mutex_) = false;
  bool isEnding_ KESU_GUARDED_BY(mutex_) = false;

  std::string readBytes_;  // Background queue only. Keeps its room: no allocation per record.
};

}  // namespace kesu
