#include "outbox/OutboxJournal.h"

#include <algorithm>
#include <utility>

#include "records/DefaultsKeys.h"

namespace kesu {

void OutboxJournal::recover(const Recovered& recovered) {
  newest_ = static_cast<AppendLog::Sequence>(std::max<std::int64_t>(defaults_.integer(kLastLoggedChangeDefault), 0));
  log_.recover(newest_, [&](const AppendLog::Found& found) { recoverEntry(found, recovered); });
}

void OutboxJournal::recoverEntry(const AppendLog::Found& found, const Recovered& recovered) {
  auto entry = readEntry(found.bytes);
  if (!entry) {
    log_.release(found.entry);  // Of a version that writes entries this one cannot read, or damaged.
    return;
  }
  // Entries come in the order of their numbers, so what is newer than the last change made was not made.
  if (!entry->changes.empty() && found.entry.sequence > newest_) {
    DefaultsChanges changes;
    for (OutboxEntry::Change& change : entry->changes) {
      changes.push_back({change.kind, change.key, std::move(change.value)});
    }
    apply(changes, found.entry);
  }
  newest_ = std::max(newest_, found.entry.sequence);
  if (entry->record && !found.isReleased) {
    recovered(found.entry, contextOf(found.preamble));
  }
}

const Dictionary& OutboxJournal::contextOf(std::string_view preamble) {
  if (contexts_.empty() || preamble != preamble_) {
    preamble_ = preamble;
    contexts_.push_back(readDictionary(preamble).value_or(Dictionary()));
  }
  return contexts_.back();
}

void OutboxJournal::setContext(const Dictionary& context) {
  bytes_.clear();
  if (appendDictionary(bytes_, context)) {
    log_.setPreamble(bytes_);
  }
}

std::optional<AppendLog::Entry> OutboxJournal::append(const PendingRecord& frame, const Dictionary& entries,
                                                      const std::optional<Replacement>& replacement,
                                                      DefaultsChanges changes) {
  bytes_.clear();
  const bool isWritten = appendChanges(bytes_, changes) && appendRecord(bytes_, frame, entries, replacement);
  const auto entry = isWritten ? log_.append(bytes_) : std::nullopt;
  apply(changes, entry);
  return entry;
}

bool OutboxJournal::append(DefaultsChanges changes) {
  bytes_.clear();
  const bool isWritten = appendChanges(bytes_, changes);
  const auto entry = isWritten ? log_.append(bytes_, true) : std::nullopt;
  apply(changes, entry);
  return entry.has_value();
}

void OutboxJournal::apply(DefaultsChanges& changes, const std::optional<AppendLog::Entry>& entry) {
  if (entry) {
    newest_ = std::max(newest_, entry->sequence);
  }
  if (changes.empty()) {
    return;
  }
  if (entry) {
    changes.push_back(
        {DefaultsChange::Kind::Set, kLastLoggedChangeDefault, static_cast<std::int64_t>(entry->sequence)});
  }
  defaults_.apply(changes);
}

}  // namespace kesu
