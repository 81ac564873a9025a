#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kesu {

using Sha256Digest = std::array<std::uint8_t, 32>;
using Md5Digest = std::array<std::uint8_t, 16>;

/// The SHA-256 digest of the bytes. Any thread.
Sha256Digest sha256(std::string_view bytes);

/// The MD5 digest of the bytes, for naming files only: it protects nothing. Also works on a machine whose policy
/// withholds MD5 from programs. Any thread.
Md5Digest md5(std::string_view bytes);

/// Two lower-case hexadecimal digits a byte ("%02x").
std::string hexLower(std::span<const std::uint8_t> bytes);

}  // namespace kesu
