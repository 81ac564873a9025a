#pragma once

#include <string>

#include "platform/linux/defaults/SqliteHandles.h"

namespace kesu {

/// Moves the journal of a DefaultsStore into its file, on a connection of its own, so that the store can be written
/// meanwhile. One thread at a time; the connection is opened at first use and kept.
class DefaultsCheckpointer {
 public:
  /// Copies the journal into the file and waits for the disk; other connections may be used meanwhile. Returns false
  /// when not all of it could be copied.
  bool moveJournal(const std::string& path);

  /// Empties the journal. Does not wait for the disk when moveJournal() has copied all of it, else it copies the rest
  /// first. No other connection may write or use the journal meanwhile. Returns whether it is empty.
  bool emptyJournal(const std::string& path);

  /// Checks the whole store for damage, while others may write it: some 3 ms for 5 MB that are in memory. Returns false
  /// also when it cannot be checked now.
  bool findsDamage(const std::string& path);

  /// Closes the connection. Needed before the store's file is replaced by another.
  void close() { database_.reset(); }

  /// Forgets the connection without closing it, as a forked child must.
  void abandon() { static_cast<void>(database_.release()); }

 private:
  bool openOnce(const std::string& path);
  bool run(const std::string& path, int mode);

  SqliteDatabase database_;
};

}  // namespace kesu
