#include "outbox/OutboxJournal.h"

#include <algorithm>
#include <utility>

#include "records/DefaultsKeys.h"

namespace kesu {

void OutboxJournal::recover(const Recovered& recovered) {
  const bool isKnown = defaults_.isLoaded();
  const auto last = isKnown ? std::optional(lastMade()) : std::nullopt;
  newest_ = last.value_or(0);
  log_.recover(last, [&](const AppendLog::Found& found) { recoverEntry(found, recovered); });
  if (isKnown) {
    catchUp();
  }
}

AppendLog::Sequence OutboxJournal::lastMade() {
  constexpr auto kMost = static_cast<std::int64_t>(AppendLog::kHighestSequence / 2);
  const std::int64_t found = defaults_.integer(kLastLoggedChangeDefault);
  const std::int64_t number = std::clamp<std::int64_t>(found, 0, kMost);
  if (number != found) {  // Damage must not use up the numbers.
    defaults_.set(kLastLoggedChangeDefault, number);
  }
  return static_cast<AppendLog::Sequence>(number);
}

void OutboxJournal::recoverEntry(const AppendLog::Found& found, const Recovered& recovered) {
  auto entry = readEntry(found.bytes);
  if (!entry) {
    return;  // It is whole, as its checksum says: a later version wrote it, which may be installed again.
  }
  if (!entry->changes.empty()) {
    unapplied_.push_back({found.entry, std::move(entry->changes)});
  }
  newest_ = std::max(newest_, found.entry.sequence);
  if (entry->record && !found.isReleased) {
    recovered(found.entry, contextOf(found.preamble));
  }
}

void OutboxJournal::catchUp() {
  const AppendLog::Sequence made = lastMade();
  isCaughtUp_ = true;
  for (const Unapplied& entry : std::exchange(unapplied_, {})) {
    if (entry.entry.sequence > made) {
      DefaultsChanges changes;
      for (const OutboxEntry::Change& change : entry.changes) {
        const std::string* suffix = change.value.text();
        changes.push_back({change.kind, change.key, change.value, suffix != nullptr ? *suffix : std::string_view()});
      }
      apply(changes, entry.entry);
    }
  }
  newest_ = std::max(newest_, made);
  log_.continueBehind(newest_);
  if (newest_ > made) {  // What this process has logged is made already.
    const DefaultsChange raise[] = {
        DefaultsChange::raise(kLastLoggedChangeDefault, static_cast<std::int64_t>(newest_))};
    defaults_.apply(raise);
  }
}

const Dictionary& OutboxJournal::contextOf(std::string_view preamble) {
  auto context = contexts_.find(preamble);
  if (context == contexts_.end()) {
    context = contexts_.emplace(preamble, readDictionary(preamble).value_or(Dictionary())).first;
  }
  return context->second;
}

void OutboxJournal::setContext(const Dictionary& context) {
  bytes_.clear();
  if (appendDictionary(bytes_, context)) {
    log_.setPreamble(bytes_);
  }
}

std::optional<AppendLog::Entry> OutboxJournal::append(const PendingRecord& frame, const Dictionary& entries,
                                                      const std::optional<Replacement>& replacement,
                                                      std::span<const DefaultsChange> changes) {
  bytes_.clear();
  const bool isWritten = appendChanges(bytes_, changes) && appendRecord(bytes_, frame, entries, replacement);
  const auto entry = isWritten ? log_.append(bytes_) : std::nullopt;
  apply(changes, entry);
  return entry;
}

bool OutboxJournal::append(std::span<const DefaultsChange> changes) {
  bytes_.clear();
  const bool isWritten = appendChanges(bytes_, changes);
  const auto entry = isWritten ? log_.append(bytes_, true) : std::nullopt;
  apply(changes, entry);
  return entry.has_value();
}

void OutboxJournal::apply(std::span<const DefaultsChange> changes, const std::optional<AppendLog::Entry>& entry) {
  if (entry) {
    newest_ = std::max(newest_, entry->sequence);
  }
  if (changes.empty()) {
    return;
  }
  step_.assign(changes.begin(), changes.end());
  if (entry && isCaughtUp_) {
    step_.push_back(DefaultsChange::raise(kLastLoggedChangeDefault, static_cast<std::int64_t>(entry->sequence)));
  }
  defaults_.apply(step_);
  step_.clear();
}

}  // namespace kesu
