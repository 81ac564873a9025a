#pragma once

#include <kesu/Export.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kesu {

/// A log on disk that keeps bytes from the moment append() returns: they survive the death of the process at any
/// instant (kill -9), and power loss from the next flush() on.
///
/// Entries are numbered in the order of their appends; the numbers continue from process to process. Each process
/// writes a log of its own; one whose process is gone is taken over by the next recover(). Callable from any thread,
/// unless stated otherwise; nothing throws. In a forked child every operation does nothing.
class KESU_API AppendLog {
 public:
  using Sequence = std::uint64_t;  ///< The first entry has number 1; 0 is none.

  /// Greatest number: what lies beyond is damage, and is not found again.
  static constexpr Sequence kHighestSequence = Sequence{1} << 62U;

  /// Longest entry in bytes.
  static constexpr std::size_t kLongestEntry = 1'000'000;

  /// Longest preamble in bytes.
  static constexpr std::size_t kLongestPreamble = std::size_t{32} * 1024;

  /// Names one entry. Valid until the entry is released.
  struct Entry {
    Sequence sequence = 0;
    std::uint32_t segment = 0;
    std::uint32_t offset = 0;
  };

  /// One entry of an earlier process. The views are valid during the call only.
  struct Found {
    Entry entry;
    bool isReleased = false;
    std::string_view preamble;  ///< The preamble in force when the entry was appended; empty when there was none.
    std::string_view bytes;
  };

  virtual ~AppendLog() = default;

  /// Opens the log: visits every whole entry that earlier processes left, in the order of their numbers, and makes room
  /// for new ones. Numbers continue behind `last` and behind every entry found; released entries up to and including
  /// `last` may be left out. Where `last` is not known, or the disk withholds what is there, numbers are at least the
  /// microseconds since 1970: ahead of every earlier process, if the clock is right. Called once, before anything else;
  /// may block for the disk. `visit` may release(), and call nothing else.
  virtual void recover(std::optional<Sequence> last, const std::function<void(const Found&)>& visit) = 0;

  /// Gives no entry a number up to and including `sequence` from now on.
  virtual void continueBehind(Sequence sequence) = 0;

  /// Appends an entry. Costs a copy; touches the disk only where prepare() was late. Returns nothing when the entry is
  /// not kept: it is too long, there is no room, no disk or no home directory, or this is a forked child. `isReleased`
  /// appends an entry that is released from the beginning, for what only a later recover() has to see.
  virtual std::optional<Entry> append(std::string_view bytes, bool isReleased = false) = 0;

  /// Appends the context of the entries that follow, and repeats it wherever a start of reading needs it. One that is
  /// longer than kLongestPreamble counts as none.
  virtual void setPreamble(std::string_view bytes) = 0;

  /// Replaces `bytes` by those of an entry that was not released. Returns false when they cannot be read any more.
  virtual bool read(const Entry& entry, std::string& bytes) = 0;

  /// Marks an entry as released: after a restart Found::isReleased is true.
  virtual void release(const Entry& entry) = 0;

  /// Notes that no start needs released entries up to and including `sequence` any more: their room may be used again.
  virtual void settle(Sequence sequence) = 0;

  /// Whether appends will soon outrun the room that prepare() has made. Costs one atomic load.
  virtual bool isRunningLow() const = 0;

  /// Makes room ready ahead of the appends, and gives back room that is no longer needed. After append() returned
  /// nothing, this is what tries again. May wait for the disk: for the background queue, after flush().
  virtual void prepare() = 0;

  /// Hands everything appended and released so far to the disk and waits for it. For the background queue.
  virtual void flush() = 0;

  /// Starts the same without waiting, for the end of a process.
  virtual void startFlush() = 0;

  /// Whether this process is a forked child of the one that made the log: mutexes may be locked by threads that it does
  /// not have. Locks nothing.
  virtual bool isInForkedChild() const = 0;
};

}  // namespace kesu
