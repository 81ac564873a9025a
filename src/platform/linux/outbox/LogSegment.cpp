#include "platform/linux/outbox/LogSegment.h"

#include <bit>
#include <cstring>

namespace kesu {
namespace {

constexpr char kMagic[8] = {'k', 'e', 's', 'u', 'l', 'o', 'g', '\n'};
constexpr std::uint32_t kVersion = 1;  // Reads as another number on a machine of the other byte order.

struct HeaderLayout {
  char magic[8] = {};
  std::uint32_t version = 0;
  std::uint32_t number = 0;
  std::uint64_t logId = 0;
  std::uint64_t firstSequence = 0;
  std::uint64_t checksum = 0;
};
static_assert(sizeof(HeaderLayout) == kSegmentHeaderBytes);

// A checksum of our own, because the usual ones cost more than the rest of an append where the processor has no
// instruction for them. Four lanes, as a multiplication takes as long as four can be started in. Each step (exclusive
// or, multiplication by an odd number, rotation) is reversible: a change within one word is always noticed, any other
// with a probability of 1 - 2^-64. It protects from torn writes and failing disks, not from an enemy.
constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15U;

std::uint64_t mixed(std::uint64_t state, std::uint64_t word) {
  return std::rotl((state ^ word) * kMultiplier, 29);
}

std::uint64_t wordAt(const char* bytes, std::size_t count = sizeof(std::uint64_t)) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, count);
  return word;
}

std::uint64_t checksumOf(std::uint64_t seed, std::uint64_t secondSeed, std::string_view bytes) {
  std::uint64_t lanes[4] = {mixed(seed, bytes.size()), mixed(secondSeed, 1), kMultiplier, ~kMultiplier};
  const char* at = bytes.data();
  std::size_t left = bytes.size();
  for (; left >= sizeof(lanes); left -= sizeof(lanes), at += sizeof(lanes)) {
    for (unsigned lane = 0; lane < 4; ++lane) {
      lanes[lane] = mixed(lanes[lane], wordAt(at + lane * sizeof(std::uint64_t)));
    }
  }
  for (unsigned lane = 0; left > 0; ++lane) {
    const std::size_t count = left < sizeof(std::uint64_t) ? left : sizeof(std::uint64_t);
    lanes[lane] = mixed(lanes[lane], wordAt(at, count));
    left -= count;
    at += count;
  }
  std::uint64_t sum = lanes[0];
  for (unsigned lane = 1; lane < 4; ++lane) {
    sum = mixed(sum, lanes[lane]);
  }
  return sum ^ (sum >> 32U);
}

// The header at `offset`, where there must be one or the end; nothing at the end.
std::optional<EntryHeader> headerAt(std::string_view segment, std::size_t offset) {
  EntryHeader header;
  std::memcpy(&header, segment.data() + offset, sizeof(header));
  const bool isPlausible = (header.kind() == EntryKind::Entry || header.kind() == EntryKind::Preamble) &&
                           header.length() <= AppendLog::kLongestEntry;
  return isPlausible ? std::optional(header) : std::nullopt;
}

std::uint64_t headerChecksum(const HeaderLayout& layout) {
  return checksumOf(kVersion, 0, {reinterpret_cast<const char*>(&layout), offsetof(HeaderLayout, checksum)});
}

}  // namespace

SegmentHeaderBytes encodeSegmentHeader(const SegmentHeader& header) {
  HeaderLayout layout;
  std::memcpy(layout.magic, kMagic, sizeof(kMagic));
  layout.version = kVersion;
  layout.number = header.number;
  layout.logId = header.logId;
  layout.firstSequence = header.firstSequence;
  layout.checksum = headerChecksum(layout);
  return std::bit_cast<SegmentHeaderBytes>(layout);
}

std::optional<SegmentHeader> parseSegmentHeader(std::string_view bytes) {
  if (bytes.size() < kSegmentHeaderBytes) {
    return std::nullopt;
  }
  HeaderLayout layout;
  std::memcpy(&layout, bytes.data(), sizeof(layout));
  const bool isOurs = std::memcmp(layout.magic, kMagic, sizeof(kMagic)) == 0 && layout.version == kVersion &&
                      layout.checksum == headerChecksum(layout) && layout.firstSequence > 0 &&
                      layout.firstSequence <= AppendLog::kHighestSequence;
  return isOurs ? std::optional(SegmentHeader{layout.logId, layout.number, layout.firstSequence}) : std::nullopt;
}

EntryHeader makeEntryHeader(EntryKind kind, AppendLog::Sequence sequence, std::string_view bytes, bool isReleased) {
  const auto kindAndLength = static_cast<std::uint32_t>(kind) << 24U | static_cast<std::uint32_t>(bytes.size());
  return {kindAndLength, isReleased ? kReleasedMark : 0, sequence, checksumOf(kindAndLength, sequence, bytes)};
}

bool goesOn(std::string_view read, std::size_t& offset) {
  while (offset + sizeof(EntryHeader) <= read.size()) {
    const auto header = headerAt(read, offset);
    if (!header) {
      return false;
    }
    offset += entryBytes(header->length());
  }
  return true;
}

bool isWhole(const EntryHeader& header, std::string_view bytes) {
  return header.length() == bytes.size() && header.checksum == checksumOf(header.kindAndLength, header.sequence, bytes);
}

SegmentReader::SegmentReader(std::string_view segment) : segment_(segment) {
  const auto header = parseSegmentHeader(segment);
  if (header) {
    next_ = header->firstSequence;
  } else {
    segment_ = {};
  }
}

std::optional<SegmentReader::Item> SegmentReader::next() {
  while (offset_ + sizeof(EntryHeader) <= segment_.size()) {
    const auto header = headerAt(segment_, offset_);
    if (!header || offset_ + sizeof(EntryHeader) + header->length() > segment_.size()) {
      break;
    }
    const Item item{header->kind(),   static_cast<std::uint32_t>(offset_),
                    header->sequence, header->checksum,
                    header->mark,     segment_.substr(offset_ + sizeof(EntryHeader), header->length())};
    offset_ += entryBytes(header->length());
    const bool isGood =
        isWhole(*header, item.bytes) && item.sequence >= next_ && item.sequence <= AppendLog::kHighestSequence;
    if (item.kind == EntryKind::Preamble) {
      isPreambleLost_ = !isGood;
    }
    if (isGood && !isPreambleLost_) {
      next_ = item.sequence;
      return item;
    }
  }
  return std::nullopt;
}

}  // namespace kesu
