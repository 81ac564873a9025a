#include "outbox/Outbox.h"

#include <string>
#include <utility>

namespace kesu {
namespace {

// How long what is new waits for the disk: what a power cut may cost.
constexpr double kHandOverSeconds = 1.0;

// Records that one task of the background queue hands out, so that other tasks have their turn.
constexpr std::size_t kMostPerTask = 64;

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
  Consequences then;
  {
    const MutexLock lock(mutex_);
    deliver_ = std::move(deliver);
    planDelivery(then);
  }
  carryOut(then);
}

void Outbox::open() {
  if (isInForkedChild()) {
    return;
  }
  Consequences then;
  {
    const MutexLock lock(mutex_);
    openLocked(then);
  }
  carryOut(then);
}

void Outbox::openLocked(Consequences& then) {
  if (std::exchange(isOpen_, true)) {
    return;
  }
  const auto recovered = [this](const AppendLog::Entry& entry, const Dictionary& context) KESU_REQUIRES(mutex_) {
    queue_.add({{entry, true, &context}, nullptr});
  };
  journal_.recover(recovered);
  then.awaitsDefaults = !journal_.isCaughtUp();
  planDelivery(then);
  planHandOver();
}

void Outbox::catchUp() {
  const MutexLock lock(mutex_);
  journal_.catchUp();
  planHandOver();
}

void Outbox::setContext(const Dictionary& context) {
  if (isInForkedChild()) {
    return;
  }
  Consequences then;
  {
    const MutexLock lock(mutex_);
    openLocked(then);
    journal_.setContext(context);
  }
  carryOut(then);
}

void Outbox::add(const PendingRecord& frame, const Dictionary& entries, const std::optional<Replacement>& replacement,
                 std::span<const DefaultsChange> changes) {
  if (isInForkedChild()) {
    return;
  }
  Consequences then;
  {
    const MutexLock lock(mutex_);
    openLocked(then);
    take(frame, entries, replacement, changes, then);
  }
  carryOut(then);
}

void Outbox::addBuilt(const PendingRecord& frame,
                      const std::function<void(Dictionary& entries, DefaultsChanges&)>& build) {
  if (isInForkedChild()) {
    return;
  }
  Consequences then;
  {
    Dictionary entries;
    DefaultsChanges changes;
    const MutexLock lock(mutex_);
    openLocked(then);
    build(entries, changes);
    take(frame, entries, std::nullopt, changes, then);
  }
  carryOut(then);
}

void Outbox::change(std::span<const DefaultsChange> changes) {
  if (isInForkedChild()) {
    return;
  }
  Consequences then;
  {
    const MutexLock lock(mutex_);
    openLocked(then);
    then.synchronizes = !journal_.append(changes);
    planHandOver();
  }
  carryOut(then);
}

void Outbox::take(const PendingRecord& frame, const Dictionary& entries, const std::optional<Replacement>& replacement,
                  std::span<const DefaultsChange> changes, Consequences& then) {
  PendingRecord record = frame;
  record.moment = clock_.now();
  record.identifier = random_.uuid();
  const auto entry = journal_.append(record, entries, replacement, changes);
  planHandOver();
  if (entry && isEnding_) {
    return;
  }
  if (log_.isRunningLow() && !std::exchange(isPreparing_, true)) {
    then.prepares = true;
  }
  if (entry) {
    queue_.add({{*entry, true, nullptr}, nullptr});
  } else {
    record.entries = replaced(entries, replacement);
    queue_.add({{}, std::make_unique<PendingRecord>(std::move(record))});
    then.synchronizes = !changes.empty();
  }
  planDelivery(then);
}

void Outbox::planDelivery(Consequences& then) {
  if (!isScheduled_ && deliver_ && queue_.hasNext()) {
    isScheduled_ = true;
    then.delivers = true;
  }
}

// Without the lock: while the process ends, the queue runs its tasks inside post().
void Outbox::carryOut(const Consequences& then) {
  if (then.awaitsDefaults) {
    defaults_.whenLoaded([this] { catchUp(); });
  }
  if (then.prepares) {
    background_.post([this] { prepare(); });
  }
  if (then.delivers) {
    background_.post([this] { deliverWaiting(); });
  }
  if (then.synchronizes) {  // No log: changes are safe at the price of a transaction.
    defaults_.synchronize();
  }
}

void Outbox::planHandOver() {
  if (!std::exchange(isHandOverPlanned_, true)) {
    background_.postAfter(kHandOverSeconds, [this] { handOver(false); });
  }
}

void Outbox::prepare() {
  if (!isEnding()) {  // It may wait for the disk.
    log_.prepare();
  }
  const MutexLock lock(mutex_);
  isPreparing_ = false;
}

void Outbox::deliverWaiting() {
  for (std::size_t count = 0; count < kMostPerTask && deliverNext(); ++count) {
  }
  Consequences then;
  {
    const MutexLock lock(mutex_);
    isScheduled_ = false;
    planDelivery(then);
  }
  carryOut(then);
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
  Consequences then;
  {
    const MutexLock lock(mutex_);
    queue_.finish();
    planHandOver();
    planDelivery(then);
  }
  carryOut(then);
}

void Outbox::leave() {
  Consequences then;
  {
    const MutexLock lock(mutex_);
    queue_.stop();
    queue_.finish();
    planDelivery(then);
  }
  carryOut(then);
}

void Outbox::park(const Ticket& ticket) {
  Consequences then;
  {
    const MutexLock lock(mutex_);
    queue_.park(ticket);
    planDelivery(then);
  }
  carryOut(then);
}

bool Outbox::retryParked() {
  Consequences then;
  bool isAny = false;
  {
    const MutexLock lock(mutex_);
    isAny = queue_.retry();
    planDelivery(then);
  }
  carryOut(then);
  return isAny;
}

bool Outbox::beginEnd() {
  if (isInForkedChild()) {
    return true;
  }
  const MutexLock lock(mutex_);
  isEnding_ = true;
  return !queue_.hasUnlogged();
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
  if (!isInForkedChild()) {
    handOver_.runAtEnd();
  }
}

void Outbox::handOverSoon() {
  background_.post([this] { handOver(true); });
}

void Outbox::handOver(bool isThorough) {
  AppendLog::Sequence newest = 0;
  {
    const MutexLock lock(mutex_);
    isHandOverPlanned_ = false;
    newest = journal_.newestMade();
    if (isEnding_) {  // finishEnd() does what there is time for.
      return;
    }
  }
  handOver_.run(newest, isThorough);
  if (isEnding()) {  // Asked again: an end does not wait for a slow disk, and its home may be gone by now.
    return;
  }
  log_.prepare();
  const MutexLock lock(mutex_);
  if (journal_.isCaughtUp()) {  // The user defaults may have followed their home.
    journal_.catchUp();
  }
}

}  // namespace kesu
