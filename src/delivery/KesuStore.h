#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/Files.h>
#include <kesu/platform/UserDefaults.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "outbox/EntryFiles.h"

namespace kesu {

/// Store files in which no record was found, for one log line about all of them.
class UnreadableFiles {
 public:
  void add(const std::string& path);

  /// Logs them at level 2, if there are any.
  void log() const;

 private:
  std::size_t count_ = 0;
  std::string first_;
};

/// Stores records that could not be delivered: one XML property list per record, in the user's documents directory,
/// beside the host's own documents. Confined to the background queue.
///
/// Files are known by their extension alone, before anything is opened, so that a host's documents are never read.
class KesuStore final : public EntryFiles {
 public:
  KesuStore(Files& files, UserDefaults& defaults, Clock& clock) : files_(files), defaults_(defaults), clock_(clock) {}

  /// Writes a record. Returns false when it contains what is no property-list value, or when the disk refuses; the
  /// record is then not stored. At the 5000th file, deletes the first one.
  ///
  /// Kept: the counter of files grows with every call, failed ones too, nothing but that one clean-up lowers it, and
  /// the limit is tested for equality, so that it acts once. [KesuStore add:]
  bool add(const Dictionary& record);

  /// Waits until the files written since the last call are on the disk. Returns false, and tries them again next time,
  /// when that fails.
  bool flush() override;

  /// Any thread.
  bool areFlushed() const override { return !hasNewFiles_.load(); }

  /// Returns the paths of all store files below the documents directory, in the order in which the system lists them.
  std::vector<std::string> storedFiles();

  /// Returns the record in one store file, with its file name under "fnk"; nothing when there is none in it. Adds a
  /// file that is there and cannot be read to `unreadable`.
  std::optional<Dictionary> recordToRepost(const std::string& path, UnreadableFiles& unreadable);

  /// Deletes one store file, named by its path below the documents directory. Returns false when that is no store file
  /// or cannot be deleted. Kept: records that are sent again carry the last path component only, so that their file in
  /// a subdirectory is looked for in the documents directory, and not found. [KesuStore deleteFile:]
  bool deleteFile(const std::string& name);

  // Owed to hosts and to the agreed interface; no caller inside the library but this class. The re-send pass reads one
  // file at a time instead of all records.

  /// Returns the documents directory; "" when the platform has none. [KesuStore documentsDirectory]
  std::string documentsDirectory() { return files_.documentsDirectory(); }

  /// Returns a fresh file path from the clock, such as ".../c01959121-20000000.kesuCache". Later names sort later. Two
  /// calls in the same microsecond return the same name. [KesuStore newFileName]
  std::string newFileName();

  /// Returns every readable record: storedFiles() through recordToRepost(). [KesuStore dictionariesToRepost]
  std::vector<Dictionary> dictionariesToRepost();

  /// Deletes the first store file that the system lists. [KesuStore deleteFirstFile]
  void deleteFirstFile();

  /// Deletes every store file. Kept: the counter of files stays as it is. [KesuStore deleteAllFiles]
  void deleteAllFiles();

  /// Logs every store file at level 3. [KesuStore ls]
  void ls();

 private:
  std::string nameBelowDocuments(const std::string& path);
  bool write(const std::string& bytes);

  Files& files_;
  UserDefaults& defaults_;
  Clock& clock_;
  std::atomic<bool> hasNewFiles_{false};  // Not yet on the disk for certain.
};

}  // namespace kesu
