#pragma once

#include <kesu/platform/AppendLog.h>
#include <kesu/platform/UserDefaults.h>

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "outbox/OutboxEntry.h"
#include "outbox/PendingRecord.h"

namespace kesu {

/// Changes of the user defaults that belong to one entry.
using DefaultsChanges = std::vector<DefaultsChange>;

/// The append log as the outbox uses it: records and changes of the user defaults, each change made exactly once. The
/// user defaults hold the number of the last logged change that they contain, and get it in one step with the change:
/// a start applies what is newer.
/// Confined to its owner.
class OutboxJournal {
 public:
  /// A record of a former process. `context` is what setContext() said there; valid as long as the journal.
  using Recovered = std::function<void(const AppendLog::Entry& entry, const Dictionary& context)>;

  OutboxJournal(AppendLog& log, UserDefaults& defaults) : log_(log), defaults_(defaults) {}

  /// Applies the changes of former processes, and passes on their records, oldest first. As long as the user defaults
  /// were not read, which say what is applied already, the changes wait for catchUp().
  void recover(const Recovered& recovered);

  /// Applies the changes of former processes that the user defaults do not contain. From then on they contain what is
  /// newest. Call it once they were read, and now and then: a file that takes the place of theirs, as that of a home
  /// does which is mounted late, may know greater numbers, and those of this process continue behind.
  void catchUp();

  /// Sets what a later process needs to complete the records of this one.
  void setContext(const Dictionary& context);

  /// Logs a record with changes and makes these. Returns nothing when they are not logged; the changes are made all the
  /// same, and are safe once the user defaults are synchronized.
  std::optional<AppendLog::Entry> append(const PendingRecord& frame, const Dictionary& entries,
                                         const std::optional<Replacement>& replacement,
                                         std::span<const DefaultsChange> changes);

  /// The same for changes without a record. Returns whether they are logged.
  bool append(std::span<const DefaultsChange> changes);

  /// Whether catchUp() was called.
  bool isCaughtUp() const { return isCaughtUp_; }

  /// The newest entry whose changes, and those of all before it, are in the user defaults; 0 before catchUp().
  AppendLog::Sequence newestMade() const { return isCaughtUp_ ? newest_ : 0; }

 private:
  /// Changes of a former process.
  struct Unapplied {
    AppendLog::Entry entry;
    std::vector<OutboxEntry::Change> changes;
  };

  void recoverEntry(const AppendLog::Found& found, const Recovered& recovered);
  const Dictionary& contextOf(std::string_view preamble);
  AppendLog::Sequence lastMade();
  void apply(std::span<const DefaultsChange> changes, const std::optional<AppendLog::Entry>& entry);

  AppendLog& log_;
  UserDefaults& defaults_;
  AppendLog::Sequence newest_ = 0;  // Entry, or number in the user defaults.
  bool isCaughtUp_ = false;
  std::vector<Unapplied> unapplied_;
  std::map<std::string, Dictionary, std::less<>> contexts_;  // By preamble. Records refer to them.
  // These keep their room: no allocation per entry.
  std::string bytes_;
  DefaultsChanges step_;
};

}  // namespace kesu
