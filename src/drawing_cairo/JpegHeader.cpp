#include "drawing_cairo/JpegHeader.h"

#include <algorithm>

#include "drawing_cairo/BigEndian.h"

namespace kesu {
namespace {

constexpr std::uint32_t kStartOfScan = 0xDA;
constexpr std::uint32_t kEndOfImage = 0xD9;
constexpr std::uint32_t kApp1 = 0xE1;
constexpr std::uint32_t kApp14 = 0xEE;

// 0xC0 to 0xCF start a frame, except the tables among them.
bool isStartOfFrame(std::uint32_t marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

bool isProgressive(std::uint32_t startOfFrame) {
  return (startOfFrame & 3) == 2;
}

bool isWithoutLength(std::uint32_t marker) {
  return marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
}

struct Segment {
  std::uint32_t marker = 0;
  std::string_view content;
};

/// Takes the next segment off `rest`. Bytes that belong to none are skipped, as the library does.
std::optional<Segment> takeSegment(std::string_view& rest) {
  for (;;) {
    rest.remove_prefix(std::min(rest.find('\xFF'), rest.size()));
    rest.remove_prefix(std::min(rest.find_first_not_of('\xFF'), rest.size()));
    if (rest.empty()) {
      return std::nullopt;
    }
    const std::uint32_t marker = byteAt(rest, 0);
    rest.remove_prefix(1);
    if (marker == 0 || isWithoutLength(marker)) {
      continue;
    }
    const std::size_t length = rest.size() >= 2 ? bigEndian16(rest, 0) : 0;
    if (marker == kEndOfImage || length < 2 || length > rest.size()) {
      return std::nullopt;
    }
    const Segment segment{marker, rest.substr(2, length - 2)};
    rest.remove_prefix(length);
    return segment;
  }
}

void readFrame(const Segment& segment, JpegHeader& header) {
  if (segment.content.size() >= 6) {
    header.height = static_cast<int>(bigEndian16(segment.content, 1));
    header.width = static_cast<int>(bigEndian16(segment.content, 3));
    header.components = static_cast<int>(byteAt(segment.content, 5));
    header.isInPieces = isProgressive(segment.marker);
  }
}

bool isComplete(const Segment& scan, std::string_view afterScan, const JpegHeader& header) {
  return header.components > 0 && !scan.content.empty() && afterScan.rfind("\xFF\xD9") != std::string_view::npos;
}

}  // namespace

std::optional<JpegHeader> readJpegHeader(std::string_view jpeg) {
  JpegHeader header;
  std::string_view rest = jpeg;
  while (const auto segment = takeSegment(rest)) {
    if (isStartOfFrame(segment->marker)) {
      readFrame(*segment, header);
    } else if (segment->marker == kApp1 && header.orientation == Orientation::Upright) {
      header.orientation = exifOrientation(segment->content);
    } else if (segment->marker == kApp14) {
      header.isAdobe = header.isAdobe || segment->content.starts_with("Adobe");
    } else if (segment->marker == kStartOfScan) {
      if (!isComplete(*segment, rest, header)) {
        return std::nullopt;
      }
      header.isInPieces = header.isInPieces || static_cast<int>(byteAt(segment->content, 0)) < header.components;
      return header;
    }
  }
  return std::nullopt;
}

}  // namespace kesu
