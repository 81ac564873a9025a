#pragma once

#include <kesu/platform/AppendLog.h>
#include <kesu/platform/UserDefaults.h>

#include "outbox/EntryFiles.h"

namespace kesu {

/// Hands what was taken to the disk: store files, user defaults and log, in the order in which they rely on each other.
/// Background queue, unless stated otherwise.
class OutboxHandOver {
 public:
  OutboxHandOver(AppendLog& log, UserDefaults& defaults) : log_(log), defaults_(defaults) {}

  /// Sets the files that must be on the disk before the log is. Not owned. Once, before anything else.
  void setEntryFiles(EntryFiles& files) { entryFiles_ = &files; }

  /// Hands all of it over and waits for the disk. `newest` is the number of the newest entry whose changes were made; a
  /// checkpoint of these is due now and then, and when `isThorough`.
  void run(AppendLog::Sequence newest, bool isThorough);

  /// Writes the changes to the user defaults and hands what is new to the disk, without waiting for it. For the end of
  /// the process; any thread.
  void runAtEnd();

 private:
  AppendLog& log_;
  UserDefaults& defaults_;
  EntryFiles* entryFiles_ = nullptr;
  AppendLog::Sequence settled_ = 0;
  int runs_ = 0;  // Since the last checkpoint.
};

}  // namespace kesu
