#include "delivery/KesuStore.h"

#include <algorithm>
#include <cinttypes>
#include <utility>

#include "delivery/StoreFileName.h"
#include "foundation/Describe.h"
#include "foundation/PropertyList.h"
#include "foundation/Text.h"
#include "records/DefaultsKeys.h"
#include "records/RecordKeys.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr std::int64_t kMostFiles = 5000;  // Some 20 MB on a disk with blocks of 4 kB.

/// Records have a few hundred bytes; a larger file is neither written nor read.
constexpr std::size_t kLargestFile = std::size_t{16} * 1024 * 1024;

constexpr int kNameAttempts = 100;

constexpr const char* kStoreSource = "KesuStore";

// Opening a pipe of that name would block, and a directory or a link of that name is the work of somebody else.
bool isOurs(const DirectoryEntry& entry) {
  return entry.isRegularFile && isStoreFile(entry.name);
}

}  // namespace

void UnreadableFiles::add(const std::string& path) {
  if (++count_ == 1) {
    first_ = path;
  }
}

void UnreadableFiles::log() const {
  if (count_ > 0) {
    KESU_LOG(2, "No record can be read from %s, the first of %zu such files", first_.c_str(), count_);
  }
}

std::string KesuStore::newFileName() {
  return documentsDirectory() + "/" + storeFileName(clock_.now());
}

bool KesuStore::add(const Dictionary& record) {
  const std::int64_t count = defaults_.integer(kNumberOfFilesDefault);
  if (count == kMostFiles) {
    deleteFirstFile();
  }
  const auto bytes = documentsDirectory().empty() ? std::nullopt : writePropertyList(record, PropertyListForm::Escaped);
  const bool fits = !bytes || bytes->size() <= kLargestFile;
  if (!fits) {
    KESU_LOG(0, "A record of more than %zu bytes cannot be stored and is lost.", kLargestFile);
  }
  const bool written = bytes && fits && write(*bytes);
  if (written) {
    hasNewFiles_.store(true);
  }
  defaults_.set(kNumberOfFilesDefault, count + 1);
  defaults_.synchronize();
  return written;
}

// Another process with the same home may store a record in the same microsecond.
// Kept: while the clock stands still, the later record replaces the earlier one.
bool KesuStore::write(const std::string& bytes) {
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    const FileResult result = files_.writeNew(newFileName(), bytes);
    if (result.status != FileStatus::Exists) {
      return result.ok();
    }
  }
  return files_.writeAtomically(newFileName(), bytes).ok();
}

bool KesuStore::flush() {
  if (!hasNewFiles_.load()) {
    return true;
  }
  const FileResult result = files_.flush(documentsDirectory());
  hasNewFiles_.store(!result.ok());
  return result.ok();
}

std::vector<std::string> KesuStore::storedFiles() {
  std::vector<std::string> paths;
  files_.enumerate(documentsDirectory(), [&paths](const DirectoryEntry& entry) {
    if (isOurs(entry)) {
      paths.push_back(entry.path);
    }
    return true;
  });
  return paths;
}

std::optional<Dictionary> KesuStore::recordToRepost(const std::string& path, UnreadableFiles& unreadable) {
  const FileContent content = files_.read(path, kLargestFile);
  auto value = content.ok() ? parsePropertyList(content.bytes, PropertyListForm::Escaped) : std::nullopt;
  Dictionary* record = value ? value->dictionary() : nullptr;
  if (record == nullptr) {
    if (content.status != FileStatus::NotFound) {  // What is gone was delivered meanwhile.
      unreadable.add(path);
    }
    return std::nullopt;
  }
  record->set(k_keyFilename, std::string(lastPathComponent(path)));
  return std::move(*record);
}

std::vector<Dictionary> KesuStore::dictionariesToRepost() {
  std::vector<Dictionary> records;
  UnreadableFiles unreadable;
  for (const std::string& path : storedFiles()) {
    if (auto record = recordToRepost(path, unreadable)) {
      records.push_back(std::move(*record));
    }
  }
  unreadable.log();
  return records;
}

// "" for "".
std::string KesuStore::nameBelowDocuments(const std::string& path) {
  return path.substr(std::min(path.size(), documentsDirectory().size() + 1));
}

bool KesuStore::deleteFile(const std::string& name) {
  if (!isStoreFile(name)) {
    return false;
  }
  const std::string path = documentsDirectory() + "/" + name;
  KESU_LOG_AT(3, kStoreSource, 114, "fullpath %s", path.c_str());
  if (files_.remove(path).ok()) {
    return true;
  }
  // Kept: a second attempt, for failures that pass.
  const FileResult secondTry = files_.remove(path);
  if (!secondTry.ok()) {
    KESU_LOG_AT(3, kStoreSource, 129, "FAILED removing %s %s", name.c_str(), secondTry.reason.c_str());
  }
  return secondTry.ok();
}

void KesuStore::deleteFirstFile() {
  const std::int64_t count = defaults_.integer(kNumberOfFilesDefault);
  std::string path;
  files_.enumerate(documentsDirectory(), [&path](const DirectoryEntry& entry) {
    path = isOurs(entry) ? entry.path : std::string();
    return path.empty();
  });
  const std::string name = nameBelowDocuments(path);
  long deleted = 0;
  if (!name.empty()) {
    deleted = deleteFile(name) ? 1 : 0;
    defaults_.set(kNumberOfFilesDefault, count - 1);
    defaults_.synchronize();
  }
  // Kept: the number printed counts the deleted files, whatever the words say.
  KESU_LOG_AT(3, kStoreSource, 193, "Deleted %s successfully and %ld unsuccessfully",
              name.empty() ? kDescriptionOfNothing : name.c_str(), deleted);
}

void KesuStore::deleteAllFiles() {
  long deleted = 0;
  long failed = 0;
  for (const std::string& path : storedFiles()) {
    ++(deleteFile(nameBelowDocuments(path)) ? deleted : failed);
  }
  KESU_LOG_AT(3, kStoreSource, 169, "Deleted %ld successfully and %ld unsuccessfully", deleted, failed);
}

void KesuStore::ls() {
  long count = 0;
  for (const std::string& path : storedFiles()) {
    ++count;
    KESU_LOG_AT(3, kStoreSource, 145, "ls %ld - %s", count, path.c_str());
  }
  KESU_LOG_AT(3, kStoreSource, 148, "%ld files listed", count);
}

}  // namespace kesu
