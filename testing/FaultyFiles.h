#pragma once

#include <kesu/platform/Files.h>

#include <utility>

#include "foundation/Mutex.h"

namespace kesu::testing {

/// Forwards to other files, except for the operations that a test made fail. Any thread; `inner` must outlive it.
///
/// A failed operation does not reach `inner` at all.
class FaultyFiles final : public Files {
 public:
  /// A count that never runs out.
  static constexpr int kForever = -1;

  explicit FaultyFiles(Files& inner) : inner_(inner) {}

  /// Makes the next `count` calls of an operation fail with `status`. FileStatus::Ok removes the fault.
  void failReads(FileStatus status, int count = kForever) { arm(reads_, status, count); }
  void failWrites(FileStatus status, int count = kForever) { arm(writes_, status, count); }
  void failFlushes(FileStatus status, int count = kForever) { arm(flushes_, status, count); }
  void failRemoves(FileStatus status, int count = kForever) { arm(removes_, status, count); }
  void failCreateDirectories(FileStatus status, int count = kForever) { arm(creates_, status, count); }

  /// Makes reads of regular files return `bytes` instead of the content; std::nullopt switches it off.
  void garbleReads(std::optional<std::string> bytes) {
    const MutexLock lock(mutex_);
    garbage_ = std::move(bytes);
  }

  std::string documentsDirectory() override { return inner_.documentsDirectory(); }
  std::string cachesDirectory() override { return inner_.cachesDirectory(); }
  std::string preferencesDirectory() override { return inner_.preferencesDirectory(); }

  FileContent read(const std::string& path, std::size_t limit) override {
    if (const FileStatus status = next(reads_); status != FileStatus::Ok) {
      return {status, {}};
    }
    FileContent content = inner_.read(path, limit);
    const MutexLock lock(mutex_);
    if (content.ok() && garbage_) {
      content.bytes = *garbage_;
    }
    return content;
  }

  FileResult writeAtomically(const std::string& path, std::string_view bytes) override {
    const FileResult fault = failed(writes_);
    return fault.ok() ? inner_.writeAtomically(path, bytes) : fault;
  }

  FileResult writeNew(const std::string& path, std::string_view bytes) override {
    const FileResult fault = failed(writes_);
    return fault.ok() ? inner_.writeNew(path, bytes) : fault;
  }

  FileResult flush(const std::string& directory) override {
    const FileResult fault = failed(flushes_);
    return fault.ok() ? inner_.flush(directory) : fault;
  }

  FileResult remove(const std::string& path) override {
    const FileResult fault = failed(removes_);
    return fault.ok() ? inner_.remove(path) : fault;
  }

  FileResult createDirectories(const std::string& path) override {
    const FileResult fault = failed(creates_);
    return fault.ok() ? inner_.createDirectories(path) : fault;
  }

  void enumerate(const std::string& directory, const std::function<bool(const DirectoryEntry&)>& visit) override {
    inner_.enumerate(directory, visit);
  }

  std::unique_ptr<FileLock> tryLock(const std::string& path) override { return inner_.tryLock(path); }

 private:
  struct Fault {
    FileStatus status = FileStatus::Ok;
    int left = 0;
  };

  void arm(Fault& fault, FileStatus status, int count) {
    const MutexLock lock(mutex_);
    fault = {status, count};
  }

  FileStatus next(Fault& fault) {
    const MutexLock lock(mutex_);
    if (fault.left == 0) {
      return FileStatus::Ok;
    }
    fault.left -= fault.left > 0 ? 1 : 0;
    return fault.status;
  }

  FileResult failed(Fault& fault) {
    const FileStatus status = next(fault);
    return {status, status == FileStatus::Ok ? std::string() : std::string("injected failure")};
  }

  Files& inner_;
  Mutex mutex_;  // Also guards the faults, which arm() and next() reach by reference.
  Fault reads_;
  Fault writes_;
  Fault flushes_;
  Fault removes_;
  Fault creates_;
  std::optional<std::string> garbage_ KESU_GUARDED_BY(mutex_);
};

}  // namespace kesu::testing
