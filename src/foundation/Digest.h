#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kesu {

using Sha256Digest = std::array<std::uint8_t, 32>;
using Md5Digest = std::array<std::uint8_t, 16>;

/// Computes the SHA-256 digest. Any thread.
Sha256Digest sha256(std::string_view bytes);

/// Computes the MD5 digest, for naming files only: it protects nothing. Also works on a machine whose policy
/// withholds MD5 from programs. Any thread.
Md5Digest md5(std::string_view bytes);

/// Formats two lower-case hexadecimal digits per byte ("%02x").
std::string hexLower(std::span<const std::uint8_t> bytes);

}  // namespace kesu
