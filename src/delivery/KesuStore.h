#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/Files.h>
#include <kesu/platform/UserDefaults.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kesu {

/// Keeps records that could not be delivered: one XML property list a record, in the user's documents directory, beside
/// the host's own documents. Main thread; holds nothing in memory.
///
/// Files are known by their extension alone, before anything is opened, so that a host's documents are never read.
class KesuStore {
 public:
  KesuStore(Files& files, UserDefaults& defaults, Clock& clock) : files_(files), defaults_(defaults), clock_(clock) {}

  /// Where the files lie; "" when the platform has no such directory.
  std::string documentsDirectory() { return files_.documentsDirectory(); }

  /// A fresh file path from the clock, such as ".../c01959121-20000000.kesuCache". Names sort in the order in which
  /// they were made. Two calls in the same microsecond give the same name.
  std::string newFileName();

  /// Writes a record. False when it holds something that is no property-list value, or the disk refuses; the record is
  /// then not stored. At the 5000th file the first one goes.
  ///
  /// Kept: the counter of files grows with every call, failed ones too, nothing but that one clean-up lowers it, and
  /// the limit is tested for equality, so that it acts once.
  bool add(const Dictionary& record);

  /// The paths of all store files below the documents directory, in the order in which the system lists them.
  std::vector<std::string> storedFiles();

  /// The record in one store file, with its file name under "fnk"; nothing when the file holds none.
  std::optional<Dictionary> recordToRepost(const std::string& path);

  /// Every readable record: storedFiles() through recordToRepost().
  std::vector<Dictionary> dictionariesToRepost();

  /// Removes one store file, named by its last path component. False when that is no store file or cannot be removed.
  /// Kept: a file that lies in a subdirectory is looked for in the documents directory, and not found.
  bool deleteFile(const std::string& name);

  /// Removes the first store file that the system lists.
  void deleteFirstFile();

  /// Removes every store file. Kept: the counter of files stays as it is.
  void deleteAllFiles();

  /// Logs every store file.
  void ls();

 private:
  Files& files_;
  UserDefaults& defaults_;
  Clock& clock_;
};

}  // namespace kesu
