#pragma once

#include <string>

#include "platform/linux/defaults/SqliteHandles.h"

namespace kesu {

/// Moves the journal of a DefaultsStore into its file, on a connection of its own, so that the store can be written
/// meanwhile. One thread at a time; the connection is made at the first use and kept.
class DefaultsCheckpointer {
 public:
  /// Copies what the journal holds into the file and waits for the disk. Any number of other connections may go on.
  /// False when not all of it could be copied.
  bool moveJournal(const std::string& path);

  /// Empties the journal. Does not wait for the disk when moveJournal() has copied all of it, else it copies the rest
  /// first. Nobody may write or hold the journal meanwhile. Returns whether it is empty.
  bool emptyJournal(const std::string& path);

  /// Looks the whole store through for damage, without keeping others from writing it: some 3 ms for 5 MB that are in
  /// memory. False also when it cannot be looked at now.
  bool findsDamage(const std::string& path);

  /// Closes the connection. Needed before the store's file is replaced by another.
  void close() { database_.reset(); }

  /// Forgets the connection without closing it: what a forked child has to do.
  void abandon() { static_cast<void>(database_.release()); }

 private:
  bool openOnce(const std::string& path);
  bool run(const std::string& path, int mode);

  SqliteDatabase database_;
};

}  // namespace kesu
