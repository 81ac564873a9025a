#include "outbox/Outbox.h"

#include <string>
#include <utility>

namespace kesu {
namespace {

// How long what is new waits for the disk: what a power cut may cost.
constexpr double kHandOverSeconds = 1.0;

// Records that one task of the background queue hands out, so that other tasks have their turn.
constexpr std::size_t kMostPerTask = 64;

// Records between two looks at the room ahead: a host that posts without pause fills a segment in some 3 ms.
constexpr std::size_t kRecordsPerPrepare = 8;

Dictionary replaced(const Dictionary& entries, const std::optional<Replacement>& replacement) {
  Dictionary made = entries;
  if (replacement && replacement->value != nullptr) {
    made.set(replacement->key, *replacement->value);
  } else if (replacement) {
    made.remove(replacement->key);
  }
  return made;
}

}  // namespace

void Outbox::startDelivery(std::function<void(Delivery)> deliver) {
  const MutexLock lock(mutex_);
  deliver_ = std::move(deliver);
  scheduleDelivery();
}

void Outbox::open() {
  if (!isInForkedChild()) {
    const MutexLock lock(mutex_);
    openLocked();
  }
}

void Outbox::openLocked() {
  if (std::exchange(isOpen_, true)) {
    return;
  }
  journal_.recover([this](const AppendLog::Entry& entry, const Dictionary& context) {
    queue_.add({{entry, true, &context}, nullptr});
  });
  scheduleDelivery();
  planHandOver();
}

void Outbox::setContext(const Dictionary& context) {
  if (!isInForkedChild()) {
    const MutexLock lock(mutex_);
    openLocked();
    journal_.setContext(context);
  }
}

void Outbox::add(const PendingRecord& frame, const Dictionary& entries, const std::optional<Replacement>& replacement,
                 DefaultsChanges changes) {
  if (isInForkedChild()) {
    return;
  }
  bool isSafe = true;
  {
    const MutexLock lock(mutex_);
    openLocked();
    isSafe = take(frame, entries, replacement, std::move(changes));
  }
  synchronizeUnless(isSafe);
}

void Outbox::addBuilt(const PendingRecord& frame,
                      const std::function<void(Dictionary& entries, DefaultsChanges&)>& build) {
  if (isInForkedChild()) {
    return;
  }
  bool isSafe = true;
  {
    Dictionary entries;
    DefaultsChanges changes;
    const MutexLock lock(mutex_);
    openLocked();
    build(entries, changes);
    isSafe = take(frame, entries, std::nullopt, std::move(changes));
  }
  synchronizeUnless(isSafe);
}

void Outbox::change(DefaultsChanges changes) {
  if (isInForkedChild()) {
    return;
  }
  bool isSafe = true;
  {
    const MutexLock lock(mutex_);
    openLocked();
    isSafe = journal_.append(std::move(changes));
    planHandOver();
  }
  synchronizeUnless(isSafe);
}

// No log: changes are safe at the price of a transaction.
void Outbox::synchronizeUnless(bool isSafe) {
  if (!isSafe) {
    defaults_.synchronize();
  }
}

// Returns false when changes were made that are in memory only.
bool Outbox::take(const PendingRecord& frame, const Dictionary& entries, const std::optional<Replacement>& replacement,
                  DefaultsChanges changes) {
  PendingRecord record = frame;
  record.moment = clock_.now();
  record.identifier = random_.uuid();
  const bool hasChanges = !changes.empty();
  const auto entry = journal_.append(record, entries, replacement, std::move(changes));
  planHandOver();
  if (entry && isEnding_) {
    return true;
  }
  if (entry) {
    queue_.add({{*entry, true, nullptr}, nullptr});
  } else {
    record.entries = replaced(entries, replacement);
    queue_.add({{}, std::make_unique<PendingRecord>(std::move(record))});
  }
  scheduleDelivery();
  return entry || !hasChanges;
}

void Outbox::scheduleDelivery() {
  if (!isScheduled_ && deliver_ && queue_.hasNext()) {
    isScheduled_ = true;
    background_.post([this] { deliverWaiting(); });
  }
}

void Outbox::planHandOver() {
  if (!std::exchange(isHandOverPlanned_, true)) {
    background_.postAfter(kHandOverSeconds, [this] { handOver(); });
  }
}

void Outbox::deliverWaiting() {
  for (std::size_t count = 0; count < kMostPerTask && deliverNext(); ++count) {
    if (count % kRecordsPerPrepare == 0) {
      log_.prepare();
    }
  }
  const MutexLock lock(mutex_);
  isScheduled_ = false;
  scheduleDelivery();
}

bool Outbox::deliverNext() {
  std::optional<OutboxQueue::Item> item;
  {
    const MutexLock lock(mutex_);
    item = queue_.takeNext();
  }
  if (!item) {
    return false;
  }
  // Without the lock, which everybody who posts and every reply needs.
  auto record = item->unlogged ? std::optional(std::move(*item->unlogged)) : readLogged(item->ticket.entry);
  if (record) {
    deliver_({std::move(*record), item->ticket, item->ticket.context});
  } else {  // The disk that has it cannot be read: a later process may have more luck.
    const MutexLock lock(mutex_);
    queue_.finish();
  }
  return true;
}

std::optional<PendingRecord> Outbox::readLogged(const AppendLog::Entry& entry) {
  auto read = log_.read(entry, readBytes_) ? readEntry(readBytes_) : std::nullopt;
  return read ? std::move(read->record) : std::nullopt;
}

void Outbox::finish(const Ticket& ticket) {
  if (ticket.isLogged) {
    log_.release(ticket.entry);
  }
  const MutexLock lock(mutex_);
  queue_.finish();
  planHandOver();
  scheduleDelivery();
}

void Outbox::leave() {
  const MutexLock lock(mutex_);
  queue_.stop();
  queue_.finish();
}

void Outbox::park(const Ticket& ticket) {
  const MutexLock lock(mutex_);
  queue_.park(ticket);
}

void Outbox::retryParked() {
  const MutexLock lock(mutex_);
  queue_.retry();
  scheduleDelivery();
}

void Outbox::beginEnd() {
  const MutexLock lock(mutex_);
  isEnding_ = true;
}

std::size_t Outbox::pendingCount() {
  const MutexLock lock(mutex_);
  return queue_.pendingCount();
}

bool Outbox::isEnding() {
  const MutexLock lock(mutex_);
  return isEnding_;
}

void Outbox::finishEnd() {
  writeChanges();
  log_.startFlush();
}

void Outbox::handOverSoon() {
  background_.post([this] { handOver(); });
}

void Outbox::handOver() {
  {
    const MutexLock lock(mutex_);
    isHandOverPlanned_ = false;
  }
  writeChanges();
  log_.flush();
  log_.prepare();
}

// A change is made in the step that logs it: what is newest now is in the user defaults now.
void Outbox::writeChanges() {
  AppendLog::Sequence newest = 0;
  {
    const MutexLock lock(mutex_);
    newest = journal_.newest();
  }
  if (defaults_.synchronize()) {
    log_.settle(newest);
  }
}

}  // namespace kesu
