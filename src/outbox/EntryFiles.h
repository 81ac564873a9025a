#pragma once

namespace kesu {

/// Files that take the place of released entries. They must be on the disk before the marks of the release are: a power
/// cut would take both otherwise.
class EntryFiles {
 public:
  /// Waits until the files are on the disk. Returns false when that fails. Background queue.
  virtual bool flush() = 0;

  /// Whether flush() has nothing to do. Any thread.
  virtual bool areFlushed() const = 0;

 protected:
  ~EntryFiles() = default;
};

}  // namespace kesu
