#include "drawing_cairo/WebpTables.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "drawing_cairo/BigEndian.h"

namespace kesu {
namespace {

// The container is RIFF; the numbers below, the order of code lengths and the repeats are those of the WebP Lossless
// Bitstream, whose prefix codes are those of Deflate with other alphabets.
constexpr std::size_t kFileHeaderBytes = 12;  // "RIFF", size, "WEBP".
constexpr std::size_t kChunkHeaderBytes = 8;  // Name, size.
constexpr std::size_t kLongestCode = 15;      // In bits.
constexpr std::uint32_t kLiterals = 256;      // Values of a colour.
constexpr std::uint32_t kLengths = 24;    // Prefixes of a copied length; behind them the places of the colour cache.
constexpr std::uint32_t kDistances = 40;  // Prefixes of the distance to what is copied.
constexpr std::uint32_t kLargestCacheBits = 11;

std::uint32_t littleEndian32(std::string_view bytes, std::size_t offset) {
  return byteAt(bytes, offset) | byteAt(bytes, offset + 1) << 8 | byteAt(bytes, offset + 2) << 16 |
         byteAt(bytes, offset + 3) << 24;
}

std::uint32_t littleEndian24(std::string_view bytes, std::size_t offset) {
  return byteAt(bytes, offset) | byteAt(bytes, offset + 1) << 8 | byteAt(bytes, offset + 2) << 16;
}

std::uint32_t parts(std::uint32_t size, std::uint32_t bits) {
  return (size + (1U << bits) - 1) >> bits;
}

/// Reads bits, the lowest of a byte first. Past the end it returns zeros, and isGood() is false.
class Bits {
 public:
  explicit Bits(std::string_view bytes) : bytes_(bytes) {}

  bool isGood() const { return isGood_; }
  void fail() { isGood_ = false; }

  std::uint32_t read(std::uint32_t count) {
    std::uint32_t value = 0;
    for (std::uint32_t bit = 0; bit < count; ++bit) {
      value |= next() << bit;
    }
    return value;
  }

  std::uint32_t next() {
    const std::size_t byte = position_ / 8;
    if (byte >= bytes_.size()) {
      fail();
      return 0;
    }
    return byteAt(bytes_, byte) >> (position_++ % 8) & 1U;
  }

 private:
  std::string_view bytes_;
  std::size_t position_ = 0;
  bool isGood_ = true;
};

/// A canonical Huffman code. One with a single symbol takes no bits.
class Code {
 public:
  Code(std::span<const std::uint8_t> lengths, Bits& bits) {
    for (const std::uint8_t length : lengths) {
      ++counts_[length];
    }
    counts_[0] = 0;
    for (std::size_t length = 1; length <= kLongestCode; ++length) {
      for (std::uint32_t symbol = 0; symbol < lengths.size() && counts_[length] > 0; ++symbol) {
        if (lengths[symbol] == length) {
          symbols_.push_back(symbol);
        }
      }
    }
    if (!isComplete()) {
      bits.fail();
    }
  }

  std::uint32_t read(Bits& bits) const {
    if (symbols_.size() == 1) {
      return symbols_.front();
    }
    std::uint32_t code = 0;
    std::uint32_t first = 0;
    std::uint32_t index = 0;
    for (std::size_t length = 1; length <= kLongestCode && bits.isGood(); ++length) {
      code |= bits.next();
      const std::uint32_t count = counts_[length];
      if (code < first + count) {
        return symbols_[index + code - first];
      }
      index += count;
      first = (first + count) << 1;
      code <<= 1;
    }
    bits.fail();
    return 0;
  }

 private:
  bool isComplete() const {
    std::int64_t left = 1;
    for (std::size_t length = 1; length <= kLongestCode; ++length) {
      left = 2 * left - counts_[length];
      if (left < 0) {
        return false;
      }
    }
    return symbols_.size() == 1 || (left == 0 && !symbols_.empty());
  }

  std::array<std::uint32_t, kLongestCode + 1> counts_{};
  std::vector<std::uint32_t> symbols_;  // By length, then by number.
};

std::vector<std::uint8_t> readSimpleLengths(Bits& bits, std::uint32_t alphabet) {
  std::vector<std::uint8_t> lengths(std::max(alphabet, kLiterals), 0);
  const bool areTwo = bits.read(1) != 0;
  lengths[bits.read(bits.read(1) != 0 ? 8 : 1)] = 1;
  if (areTwo) {
    lengths[bits.read(8)] = 1;
  }
  lengths.resize(alphabet);
  return lengths;
}

Code readLengthsCode(Bits& bits) {
  constexpr std::array<std::uint8_t, 19> kOrder{17, 18, 0, 1, 2, 3, 4, 5, 16, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  std::array<std::uint8_t, kOrder.size()> lengths{};
  const std::uint32_t count = std::min<std::uint32_t>(bits.read(4) + 4, kOrder.size());
  for (std::uint32_t i = 0; i < count; ++i) {
    lengths[kOrder[i]] = static_cast<std::uint8_t>(bits.read(3));
  }
  return {lengths, bits};
}

std::vector<std::uint8_t> readLengths(Bits& bits, std::uint32_t alphabet) {
  constexpr std::uint32_t kFirstRepeat = 16;  // 16 repeats the last length that was not 0; 17 and 18 repeat 0.
  constexpr std::array<std::pair<std::uint32_t, std::uint32_t>, 3> kRepeats{{{2, 3}, {3, 3}, {7, 11}}};
  const Code code = readLengthsCode(bits);
  std::uint32_t left = alphabet;
  if (bits.read(1) != 0) {
    const std::uint32_t width = 2 + 2 * bits.read(3);
    left = 2 + bits.read(width);
  }
  if (left > alphabet) {
    bits.fail();
  }
  std::vector<std::uint8_t> lengths;
  std::uint8_t last = 8;
  for (; left > 0 && lengths.size() < alphabet && bits.isGood(); --left) {
    const std::uint32_t length = code.read(bits);
    if (length < kFirstRepeat) {
      lengths.push_back(static_cast<std::uint8_t>(length));
      last = length != 0 ? lengths.back() : last;
    } else {
      const auto [width, least] = kRepeats[length - kFirstRepeat];
      lengths.insert(lengths.end(), bits.read(width) + least, length == kFirstRepeat ? last : std::uint8_t{0});
    }
  }
  if (lengths.size() > alphabet) {
    bits.fail();
  }
  lengths.resize(alphabet);
  return lengths;
}

Code readCode(Bits& bits, std::uint32_t alphabet) {
  const bool isSimple = bits.read(1) != 0;
  return {isSimple ? readSimpleLengths(bits, alphabet) : readLengths(bits, alphabet), bits};
}

/// Reads the length of a copy, or its distance: a prefix and extra bits.
std::uint32_t readCopyNumber(Bits& bits, std::uint32_t symbol) {
  if (symbol < 4) {
    return symbol + 1;
  }
  const std::uint32_t extra = (symbol - 2) >> 1;
  return ((2 + (symbol & 1U)) << extra) + bits.read(extra) + 1;
}

std::uint32_t readCacheBits(Bits& bits) {
  const std::uint32_t cacheBits = bits.read(1) != 0 ? bits.read(4) : 0;
  if (cacheBits > kLargestCacheBits) {
    bits.fail();
  }
  return std::min(cacheBits, kLargestCacheBits);
}

/// Reads a picture within the picture. Returns the largest number that the red and green of a pixel make, which is a
/// group's number there; copied pixels add none.
std::uint32_t readInnerPicture(Bits& bits, std::uint32_t width, std::uint32_t height) {
  const std::uint32_t cacheBits = readCacheBits(bits);
  const Code green = readCode(bits, kLiterals + kLengths + (cacheBits > 0 ? 1U << cacheBits : 0));
  const Code red = readCode(bits, kLiterals);
  const Code blue = readCode(bits, kLiterals);
  const Code alpha = readCode(bits, kLiterals);
  const Code distance = readCode(bits, kDistances);
  std::uint32_t largest = 0;
  for (std::uint64_t left = std::uint64_t{width} * height; left > 0 && bits.isGood();) {
    const std::uint32_t symbol = green.read(bits);
    std::uint64_t covered = 1;
    if (symbol < kLiterals) {
      largest = std::max(largest, red.read(bits) << 8 | symbol);
      blue.read(bits);
      alpha.read(bits);
    } else if (symbol < kLiterals + kLengths) {
      covered = readCopyNumber(bits, symbol - kLiterals);
      readCopyNumber(bits, distance.read(bits));
    }
    left -= std::min(left, covered);
  }
  return largest;
}

void readTransforms(Bits& bits, std::uint32_t& width, std::uint32_t height) {
  constexpr std::uint32_t kSubtractGreen = 2;
  constexpr std::uint32_t kPalette = 3;
  std::uint32_t seen = 0;
  while (bits.read(1) != 0 && bits.isGood()) {
    const std::uint32_t kind = bits.read(2);
    if ((seen >> kind & 1U) != 0) {
      bits.fail();
    }
    seen |= 1U << kind;
    if (kind == kPalette) {
      const std::uint32_t colors = bits.read(8) + 1;
      width = parts(width, colors > 16 ? 0 : colors > 4 ? 1 : colors > 2 ? 2 : 3);
      readInnerPicture(bits, colors, 1);
    } else if (kind != kSubtractGreen) {
      const std::uint32_t tile = bits.read(3) + 2;
      readInnerPicture(bits, parts(width, tile), parts(height, tile));
    }
  }
}

std::optional<std::size_t> tableBytes(std::string_view stream, std::uint32_t width, std::uint32_t height) {
  // What libwebp allocates per group: pointers and packed codes, and lookup tables of four-byte entries.
  constexpr std::size_t kGroupBytes = 640;
  constexpr std::size_t kFixedEntries = 2960;  // One more for every place in the colour cache.
  Bits bits(stream);
  readTransforms(bits, width, height);
  const std::uint32_t cacheBits = readCacheBits(bits);
  std::size_t groups = 1;
  if (bits.read(1) != 0) {
    const std::uint32_t tile = bits.read(3) + 2;
    groups += readInnerPicture(bits, parts(width, tile), parts(height, tile));
  }
  if (!bits.isGood()) {
    return std::nullopt;
  }
  return groups * (kGroupBytes + 4 * (kFixedEntries + (std::size_t{1} << cacheBits)));
}

std::optional<std::size_t> losslessTableBytes(std::string_view chunk) {
  constexpr std::size_t kHeaderBytes = 5;
  constexpr std::uint32_t kSideMask = 0x3FFF;
  if (chunk.size() < kHeaderBytes) {
    return std::nullopt;
  }
  const std::uint32_t sides = littleEndian32(chunk, 1);
  return tableBytes(chunk.substr(kHeaderBytes), (sides & kSideMask) + 1, (sides >> 14 & kSideMask) + 1);
}

std::optional<std::size_t> opacityTableBytes(std::string_view chunk, std::uint32_t width, std::uint32_t height) {
  constexpr std::uint32_t kMethodMask = 3;
  if (chunk.empty()) {
    return std::nullopt;
  }
  return (byteAt(chunk, 0) & kMethodMask) == 1 ? tableBytes(chunk.substr(1), width, height) : 0;
}

}  // namespace

std::optional<std::size_t> webpTableBytes(std::string_view webp) {
  constexpr std::size_t kCanvasOffset = 4;
  constexpr std::size_t kExtendedBytes = 10;
  std::uint32_t width = 1;
  std::uint32_t height = 1;
  std::size_t largest = 0;
  std::set<std::string_view> seen;
  std::string_view rest = webp.substr(std::min(webp.size(), kFileHeaderBytes));
  while (rest.size() > kChunkHeaderBytes) {
    const std::string_view name = rest.substr(0, 4);
    const std::size_t size = littleEndian32(rest, 4);
    const std::string_view chunk = rest.substr(kChunkHeaderBytes, size);
    const bool isExtended = name == "VP8X" && chunk.size() >= kExtendedBytes;
    std::optional<std::size_t> bytes = 0;
    if (isExtended) {
      width = littleEndian24(chunk, kCanvasOffset) + 1;
      height = littleEndian24(chunk, kCanvasOffset + 3) + 1;
    } else if (name == "VP8L") {
      bytes = losslessTableBytes(chunk);
    } else if (name == "ALPH") {
      bytes = opacityTableBytes(chunk, width, height);
    }
    const bool isAgain = (isExtended || name == "VP8L" || name == "ALPH") && !seen.insert(name).second;
    if (!bytes || isAgain) {  // A file of a thousand pictures would take a minute.
      return std::nullopt;
    }
    largest = std::max(largest, *bytes);
    rest.remove_prefix(std::min(rest.size(), kChunkHeaderBytes + size + size % 2));
  }
  return largest;
}

}  // namespace kesu
