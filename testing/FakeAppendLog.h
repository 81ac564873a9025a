#pragma once

#include <kesu/platform/AppendLog.h>

#include <algorithm>
#include <deque>
#include <string>
#include <utility>

#include "foundation/Mutex.h"

namespace kesu::testing {

/// An append log in memory. A second recover() is the start of the next process. Any thread.
class FakeAppendLog final : public AppendLog {
 public:
  void recover(Sequence last, const std::function<void(const Found&)>& visit) override {
    std::deque<Kept> found;
    {
      const MutexLock lock(mutex_);
      found = entries_;
      last_ = std::max({last_, last, found.empty() ? 0 : found.back().entry.sequence});
      preamble_.clear();
    }
    for (const Kept& kept : found) {
      visit({kept.entry, kept.isReleased, kept.preamble, kept.bytes});
    }
  }

  std::optional<Entry> append(std::string_view bytes, bool isReleased) override {
    const MutexLock lock(mutex_);
    if (refuses_ || bytes.size() > kLongestEntry) {
      return std::nullopt;
    }
    const Entry entry = {++last_, 0, 0};
    entries_.push_back({entry, isReleased, preamble_, std::string(bytes)});
    return entry;
  }

  void setPreamble(std::string_view bytes) override {
    const MutexLock lock(mutex_);
    preamble_ = bytes;
  }

  bool read(const Entry& entry, std::string& bytes) override {
    const MutexLock lock(mutex_);
    const auto found = find(entry);
    if (found == entries_.end()) {
      return false;
    }
    bytes = found->bytes;
    return true;
  }

  void release(const Entry& entry) override {
    const MutexLock lock(mutex_);
    if (const auto found = find(entry); found != entries_.end()) {
      found->isReleased = true;
    }
  }

  void settle(Sequence sequence) override {
    const MutexLock lock(mutex_);
    std::erase_if(entries_, [&](const Kept& kept) { return kept.isReleased && kept.entry.sequence <= sequence; });
  }

  void prepare() override {}
  void flush() override {}
  void startFlush() override {}
  bool isInForkedChild() const override { return false; }

  /// Makes append() keep nothing from now on (true), or work again (false).
  void refuse(bool refuses) {
    const MutexLock lock(mutex_);
    refuses_ = refuses;
  }

  /// Counts the entries that were not released.
  std::size_t openCount() {
    const MutexLock lock(mutex_);
    return static_cast<std::size_t>(
        std::count_if(entries_.begin(), entries_.end(), [](const Kept& kept) { return !kept.isReleased; }));
  }

 private:
  struct Kept {
    Entry entry;
    bool isReleased = false;
    std::string preamble;
    std::string bytes;
  };

  std::deque<Kept>::iterator find(const Entry& entry) KESU_REQUIRES(mutex_) {
    return std::find_if(entries_.begin(), entries_.end(),
                        [&](const Kept& kept) { return kept.entry.sequence == entry.sequence; });
  }

  Mutex mutex_;
  std::deque<Kept> entries_ KESU_GUARDED_BY(mutex_);
  std::string preamble_ KESU_GUARDED_BY(mutex_);
  Sequence last_ KESU_GUARDED_BY(mutex_) = 0;
  bool refuses_ KESU_GUARDED_BY(mutex_) = false;
};

}  // namespace kesu::testing
