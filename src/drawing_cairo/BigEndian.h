#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kesu {

// Numbers in picture files, read byte by byte. The caller has checked that they lie within `bytes`.

inline std::uint32_t byteAt(std::string_view bytes, std::size_t offset) {
  return static_cast<std::uint8_t>(bytes[offset]);
}

/// Two bytes, the larger first.
inline std::uint32_t bigEndian16(std::string_view bytes, std::size_t offset) {
  return byteAt(bytes, offset) << 8 | byteAt(bytes, offset + 1);
}

/// Four bytes, the largest first.
inline std::uint32_t bigEndian32(std::string_view bytes, std::size_t offset) {
  return bigEndian16(bytes, offset) << 16 | bigEndian16(bytes, offset + 2);
}

}  // namespace kesu
