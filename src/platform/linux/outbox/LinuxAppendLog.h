#pragma once

#include <kesu/platform/AppendLog.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/linux/base/ForkGuard.h"
#include "platform/linux/outbox/HeldSegments.h"
#include "platform/linux/outbox/LogDirectory.h"
#include "platform/linux/outbox/OutboxWarnings.h"

namespace kesu {

/// An append log in files of a megabyte that are mapped into memory where that is safe, so that an append is a copy
/// (docs/outbox.md).
///
/// prepare() keeps the next quarter of a megabyte ready; call it after flush(), which makes pages slow again. When
/// append() finds no room it makes some itself, once; if that or writing fails, it returns nothing, without a system
/// call, until the next prepare(). Trouble with the disk is logged once until it is over.
class LinuxAppendLog final : public AppendLog {
 public:
  /// Most segments that a process holds, those taken over included: 64 MB on disk.
  static constexpr std::size_t kMostSegments = 64;

  /// `directory` is that of all logs of a home, for example "<home>/Library/Outbox"; empty: there is no disk. Nothing
  /// is touched before recover().
  explicit LinuxAppendLog(std::string directory, SegmentAccess access = SegmentAccess::WhereSafe)
      : directory_(std::move(directory), access) {}

  void recover(std::optional<Sequence> last, const std::function<void(const Found&)>& visit) override;
  void continueBehind(Sequence sequence) override;
  std::optional<Entry> append(std::string_view bytes, bool isReleased = false) override;
  void setPreamble(std::string_view bytes) override;
  bool read(const Entry& entry, std::string& bytes) override;
  void release(const Entry& entry) override;
  void settle(Sequence sequence) override;
  bool isRunningLow() const override { return isRunningLow_.load(std::memory_order_relaxed); }
  void prepare() override;
  void flush() override;
  void startFlush() override;
  bool isInForkedChild() const override { return forkGuard_.isForkedChild(); }

 private:
  /// Whether an entry fits into the present segment.
  bool hasRoom(std::size_t length) const KESU_REQUIRES(mutex_) {
    return current_.file && current_.file->hasRoom(length);
  }

  /// Appends to the present segment, or to the next one. Nothing, with roomError_, when that cannot be.
  std::optional<Entry> appendLocked(std::string_view bytes, bool isReleased) KESU_REQUIRES(mutex_);

  /// Goes on in the next segment. False, with roomError_, when there is none and none can be made.
  bool startSegment() KESU_REQUIRES(mutex_);

  /// Appends the present preamble. Returns false, with errno, when the disk does not take it.
  bool appendPreamble(SegmentFile& file) KESU_REQUIRES(mutex_);

  /// Creates the next segment for an append that prepare() did not foresee. Returns an error.
  int createLate() KESU_REQUIRES(mutex_);

  std::vector<HeldSegment> allSegments();
  std::pair<std::shared_ptr<SegmentFile>, std::uint32_t> find(const Entry& entry);

  /// The steps of prepare(). Results are errors.
  int followHome() KESU_REQUIRES(background_);
  void removeDone() KESU_REQUIRES(background_);
  void compact() KESU_REQUIRES(background_);
  void keepLogs() KESU_REQUIRES(background_);
  int makeSpare() KESU_REQUIRES(background_);
  void touchAhead() KESU_REQUIRES(background_);

  /// Moves what these segments have into `most` others, and removes their files, which are in `former`. Returns an
  /// error; nothing has changed then.
  int move(const std::vector<HeldSegment>& from, std::size_t most, LogDirectory& former) KESU_REQUIRES(background_);

  const ForkGuard forkGuard_;
  OutboxWarnings warnings_;
  Mutex background_;  // One recover() or prepare() at a time. Locked before mutex_.
  LogDirectory directory_;
  bool isCompacted_ KESU_GUARDED_BY(background_) = false;
  Mutex mutex_;
  HeldSegments held_ KESU_GUARDED_BY(mutex_);
  HeldSegment current_ KESU_GUARDED_BY(mutex_);
  HeldSegment spare_ KESU_GUARDED_BY(mutex_);
  Sequence next_ KESU_GUARDED_BY(mutex_) = 0;  // 0 before recover().
  Sequence settled_ KESU_GUARDED_BY(mutex_) = 0;
  std::uint32_t lowMark_ KESU_GUARDED_BY(mutex_) = 0;  // Position in the present segment from which room is low.
  std::atomic<bool> isRunningLow_{false};
  std::string preamble_ KESU_GUARDED_BY(mutex_);
  int roomError_ KESU_GUARDED_BY(mutex_) = 0;  // Why nothing is appended until the next prepare().
};

}  // namespace kesu
