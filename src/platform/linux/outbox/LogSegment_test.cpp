#include "platform/linux/outbox/LogSegment.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace kesu {
namespace {

/// Writes a segment byte by byte, as the format says.
class SegmentText {
 public:
  explicit SegmentText(AppendLog::Sequence first = 1) {
    const SegmentHeaderBytes header = encodeSegmentHeader({7, 1, first});
    bytes_.assign(header.begin(), header.end());
  }

  /// Returns where the entry begins.
  std::size_t add(AppendLog::Sequence sequence, const std::string& text, EntryKind kind = EntryKind::Entry,
                  bool isReleased = false) {
    const EntryHeader header = makeEntryHeader(kind, sequence, text, isReleased);
    const std::size_t offset = bytes_.size();
    bytes_.append(reinterpret_cast<const char*>(&header), sizeof(header)).append(text);
    bytes_.resize((bytes_.size() + 7) / 8 * 8);
    return offset;
  }

  std::string& bytes() { return bytes_; }

 private:
  std::string bytes_;
};

/// What a reader finds: "number text", preambles in parentheses, released ones with a dash.
std::string contentOf(const std::string& segment) {
  std::string content;
  SegmentReader reader(segment);
  while (const auto item = reader.next()) {
    const std::string text(item->bytes);
    content += item->kind == EntryKind::Preamble
                   ? "(" + text + ") "
                   : std::to_string(item->sequence) + text + (item->isReleased() ? "- " : " ");
  }
  return content;
}

TEST(LogSegment, HeaderIsReadBackAndAnyChangeNoticed) {
  const SegmentHeader header{0x1122334455667788U, 9, 42};
  const SegmentHeaderBytes encoded = encodeSegmentHeader(header);
  std::string bytes(encoded.begin(), encoded.end());
  EXPECT_EQ(parseSegmentHeader(bytes), header);
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    bytes[at] = static_cast<char>(bytes[at] ^ 1);
    EXPECT_EQ(parseSegmentHeader(bytes), std::nullopt) << at;
    EXPECT_EQ(parseSegmentHeader(std::string_view(bytes).substr(0, at)), std::nullopt) << at;
    bytes[at] = static_cast<char>(bytes[at] ^ 1);
  }
  for (const AppendLog::Sequence first : {AppendLog::Sequence{0}, ~AppendLog::Sequence{0}}) {
    const SegmentHeaderBytes wrong = encodeSegmentHeader({1, 1, first});
    EXPECT_EQ(parseSegmentHeader({wrong.data(), wrong.size()}), std::nullopt) << first;
  }
}

TEST(LogSegment, EveryChangeOfAnEntryButThatOfItsMarkIsNoticed) {
  for (const std::size_t length : {0U, 1U, 7U, 8U, 31U, 32U, 33U, 300U}) {
    std::string bytes(length, 'x');
    const EntryHeader header = makeEntryHeader(EntryKind::Entry, 5, bytes, false);
    EXPECT_TRUE(isWhole(header, bytes)) << length;
    for (std::size_t bit = 0; bit < length * 8; ++bit) {
      bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ 1 << bit % 8);
      EXPECT_FALSE(isWhole(header, bytes)) << length << " " << bit;
      bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ 1 << bit % 8);
    }
    for (std::size_t bit = 0; bit < sizeof(header) * 8; ++bit) {
      char raw[sizeof(header)];
      std::memcpy(raw, &header, sizeof(header));
      raw[bit / 8] = static_cast<char>(raw[bit / 8] ^ 1 << bit % 8);
      EntryHeader changed;
      std::memcpy(&changed, raw, sizeof(header));
      EXPECT_EQ(isWhole(changed, bytes), bit / 32 == 1) << length << " " << bit;
    }
  }
}

TEST(LogSegment, ReadsUpToTheEndAndSkipsWhatIsDamaged) {
  SegmentText whole;
  whole.add(1, "p", EntryKind::Preamble);
  const std::size_t a = whole.add(1, "a");
  const std::size_t b = whole.add(3, "bbbbbbbbbbbb", EntryKind::Entry, true);
  const std::size_t q = whole.add(4, "q", EntryKind::Preamble);
  const std::size_t c = whole.add(4, "c");
  whole.add(5, "r", EntryKind::Preamble);
  whole.add(6, "d");
  const auto with = [&](std::size_t offset, const std::string& change) {
    return whole.bytes().substr(0, offset) + change + whole.bytes().substr(offset + change.size());
  };
  constexpr std::size_t kText = sizeof(EntryHeader);
  const std::pair<std::string, std::string> table[] = {
      {whole.bytes(), "(p) 1a 3bbbbbbbbbbbb- (q) 4c (r) 6d "},
      {with(a + kText, "A"), "(p) 3bbbbbbbbbbbb- (q) 4c (r) 6d "},
      {with(b + kText, "A"), "(p) 1a (q) 4c (r) 6d "},
      {with(b + 4, "?"), "(p) 1a 3bbbbbbbbbbbb (q) 4c (r) 6d "},
      {with(q + kText, "A"), "(p) 1a 3bbbbbbbbbbbb- (r) 6d "},
      {with(c, std::string(4, '\0')), "(p) 1a 3bbbbbbbbbbbb- (q) "},
      {with(c, "\xff\xff\xff\x01"), "(p) 1a 3bbbbbbbbbbbb- (q) "},
      {with(c, std::string("\1\0\0\3", 4)), "(p) 1a 3bbbbbbbbbbbb- (q) "},
      {whole.bytes().substr(0, c + kText), "(p) 1a 3bbbbbbbbbbbb- (q) "},
      {whole.bytes().substr(0, b + kText - 1), "(p) 1a "},
      {with(0, "K"), ""},
      {"", ""},
  };
  for (std::size_t row = 0; row < std::size(table); ++row) {
    EXPECT_EQ(contentOf(table[row].first), table[row].second) << row;
  }
}

TEST(LogSegment, NumbersNeverFallBelowThatOfTheHeaderOrTheEntryBefore) {
  SegmentText segment(5);
  segment.add(4, "a");
  segment.add(6, "b");
  segment.add(6, "c");
  segment.add(5, "late", EntryKind::Preamble);
  segment.add(7, "d");
  segment.add(8, "e", EntryKind::Preamble);
  segment.add(9, "f");
  segment.add(~AppendLog::Sequence{0}, "g");
  EXPECT_EQ(contentOf(segment.bytes()), "6b 6c (e) 9f ");
}

}  // namespace
}  // namespace kesu
