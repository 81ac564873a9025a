#pragma once

#include <kesu/platform/AppendLog.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <vector>

#include "foundation/Mutex.h"

namespace kesu::testing {

/// An append log in memory. Any thread.
class FakeAppendLog final : public AppendLog {
 public:
  void recover(std::optional<Sequence> last, const std::function<void(const Found&)>& visit) override {
    std::vector<Stored> found;
    {
      const MutexLock lock(mutex_);
      found = entries_;
    }
    for (const Stored& stored : found) {
      if (stored.entry.sequence > kHighestSequence) {
        continue;
      }
      visit({stored.entry, stored.isReleased, stored.preamble, stored.bytes});
    }
    const MutexLock lock(mutex_);
    last_ = std::max(last.value_or(kNumbersOfClock), last_);
    isOpen_ = true;
  }

  void continueBehind(Sequence sequence) override {
    const MutexLock lock(mutex_);
    last_ = std::max(last_, sequence);
  }

  std::optional<Entry> append(std::string_view bytes, bool isReleased = false) override {
    const MutexLock lock(mutex_);
    if (!isOpen_ || isRefusing_ || bytes.size() > kLongestEntry) {
      return std::nullopt;
    }
    const Entry entry{++last_, 1, 0};
    if (!isTorn_) {
      entries_.push_back({entry, isReleased, preamble_, std::string(bytes)});
    }
    return entry;
  }

  void setPreamble(std::string_view bytes) override {
    const MutexLock lock(mutex_);
    preamble_ = bytes.size() > kLongestPreamble ? std::string_view() : bytes;
  }

  bool read(const Entry& entry, std::string& bytes) override {
    const MutexLock lock(mutex_);
    const Stored* stored = find(entry);
    if (stored != nullptr) {
      bytes = stored->bytes;
    }
    return stored != nullptr;
  }

  void release(const Entry& entry) override {
    const MutexLock lock(mutex_);
    if (Stored* stored = find(entry)) {
      stored->isReleased = true;
    }
  }

  void settle(Sequence sequence) override {
    const MutexLock lock(mutex_);
    settled_ = std::max(settled_, sequence);
  }

  bool isRunningLow() const override { return false; }

  void prepare() override {
    const MutexLock lock(mutex_);
    std::erase_if(entries_, [settled = settled_](const Stored& stored) {
      return stored.isReleased && stored.entry.sequence <= settled;
    });
  }

  void flush() override { ++flushCount_; }
  void startFlush() override { ++flushCount_; }
  bool isInForkedChild() const override { return false; }

  /// Has the process die and another one start: recover() comes next.
  void restart() {
    const MutexLock lock(mutex_);
    isOpen_ = false;
    settled_ = 0;
    preamble_.clear();
    isRefusing_ = false;
    isTorn_ = false;
  }

  /// Counts the times at which what is new was handed to the disk.
  int flushCount() const { return flushCount_; }

  /// Counts the entries that were not released.
  std::size_t openCount() {
    const MutexLock lock(mutex_);
    return static_cast<std::size_t>(
        std::count_if(entries_.begin(), entries_.end(), [](const Stored& stored) { return !stored.isReleased; }));
  }

  /// Has append() return nothing, as on a full disk.
  void refuse(bool isRefusing) {
    const MutexLock lock(mutex_);
    isRefusing_ = isRefusing;
  }

  /// Has the next start find nothing of what is appended from now on, as when the process dies inside append().
  void tear() {
    const MutexLock lock(mutex_);
    isTorn_ = true;
  }

 private:
  static constexpr Sequence kNumbersOfClock = 1'000'000'000;

  struct Stored {
    Entry entry;
    bool isReleased = false;
    std::string preamble;
    std::string bytes;
  };

  Stored* find(const Entry& entry) KESU_REQUIRES(mutex_) {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [&](const Stored& stored) { return stored.entry.sequence == entry.sequence; });
    return found != entries_.end() ? &*found : nullptr;
  }

  std::atomic<int> flushCount_{0};
  Mutex mutex_;
  std::vector<Stored> entries_ KESU_GUARDED_BY(mutex_);
  std::string preamble_ KESU_GUARDED_BY(mutex_);
  Sequence last_ KESU_GUARDED_BY(mutex_) = 0;
  Sequence settled_ KESU_GUARDED_BY(mutex_) = 0;
  bool isOpen_ KESU_GUARDED_BY(mutex_) = false;
  bool isRefusing_ KESU_GUARDED_BY(mutex_) = false;
  bool isTorn_ KESU_GUARDED_BY(mutex_) = false;
};

}  // namespace kesu::testing
