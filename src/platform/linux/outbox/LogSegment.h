#pragma once

#include <kesu/platform/AppendLog.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kesu {

/// The format of one segment of an append log (docs/outbox.md), as functions over bytes. Numbers are in the byte order
/// of the machine: a segment does not leave it.

/// Bytes of a segment file. A megabyte is some 3,000 records.
constexpr std::uint32_t kSegmentBytes = 1U << 20U;

/// What a segment file begins with.
struct SegmentHeader {
  std::uint64_t logId = 0;
  std::uint32_t number = 0;               ///< Segments of a log are filled in the order of their numbers.
  AppendLog::Sequence firstSequence = 0;  ///< No entry of the segment has a smaller number.

  friend bool operator==(const SegmentHeader&, const SegmentHeader&) = default;
};

constexpr std::uint32_t kSegmentHeaderBytes = 40;
using SegmentHeaderBytes = std::array<char, kSegmentHeaderBytes>;

SegmentHeaderBytes encodeSegmentHeader(const SegmentHeader& header);

/// Nothing when the bytes do not begin with a header of this version and byte order.
std::optional<SegmentHeader> parseSegmentHeader(std::string_view bytes);

enum class EntryKind : std::uint32_t {
  Entry = 1,    ///< What append() was given.
  Preamble = 2  ///< The context of the entries that follow. Its number is that of the next entry.
};

/// What each entry begins with, as it lies in the file. Entries lie at multiples of eight bytes.
struct EntryHeader {
  std::uint32_t kindAndLength = 0;  ///< Zero: the segment ends here. Written last: it makes the entry visible.
  std::uint32_t mark = 0;           ///< kReleasedMark, kCopyMark, or anything else: it waits.
  std::uint64_t sequence = 0;
  std::uint64_t checksum = 0;  ///< Of everything but the mark, which changes in place.

  EntryKind kind() const { return static_cast<EntryKind>(kindAndLength >> 24U); }
  std::uint32_t length() const { return kindAndLength & 0xFFFFFFU; }
};
static_assert(sizeof(EntryHeader) == 24 && offsetof(EntryHeader, sequence) == 8);

// "DONE" and "COPY" on the machines we know: a help in a hex dump.
constexpr std::uint32_t kReleasedMark = 0x454E4F44;
constexpr std::uint32_t kCopyMark = 0x59504F43;  // Another copy of the entry counts.

/// Bytes that an entry of `length` bytes takes in a segment.
constexpr std::uint32_t entryBytes(std::size_t length) {
  return (static_cast<std::uint32_t>(sizeof(EntryHeader) + length) + 7U) & ~7U;
}

EntryHeader makeEntryHeader(EntryKind kind, AppendLog::Sequence sequence, std::string_view bytes, bool isReleased);

/// Whether a segment goes on behind what was read of it: it has no end there. `offset` is where an entry begins, at
/// first kSegmentHeaderBytes, and is moved on.
bool goesOn(std::string_view read, std::size_t& offset);

/// Whether the checksum is that of these bytes.
bool isWhole(const EntryHeader& header, std::string_view bytes);

/// Reads the entries of a segment one after the other, whatever its bytes are. A torn or damaged entry is skipped;
/// where its length cannot be true either, the segment ends. Entries behind a damaged preamble are skipped as well, up
/// to the next preamble: their context is unknown.
class SegmentReader {
 public:
  struct Item {
    EntryKind kind = EntryKind::Entry;
    std::uint32_t offset = 0;
    AppendLog::Sequence sequence = 0;
    std::uint64_t checksum = 0;
    std::uint32_t mark = 0;
    std::string_view bytes;

    bool isReleased() const { return mark == kReleasedMark; }
    bool isCopy() const { return mark == kCopyMark; }
  };

  /// `segment` is the whole file, which must outlive the reader. Without a valid header there are no entries.
  explicit SegmentReader(std::string_view segment);

  std::optional<Item> next();

 private:
  std::string_view segment_;
  std::size_t offset_ = kSegmentHeaderBytes;
  AppendLog::Sequence next_ = 0;
  bool isPreambleLost_ = false;
};

}  // namespace kesu
