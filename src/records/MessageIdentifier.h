#pragma once

#include <kesu/platform/Random.h>

#include <array>
#include <cstdint>
#include <string>

namespace kesu {

/// Returns the 16 bytes of a UUID in base64 without padding: 22 characters. Any thread. [Kesu base64UUID:]
std::string base64Uuid(const std::array<std::uint8_t, 16>& uuid);

/// The same of a new random UUID. Any thread.
std::string newBase64Uuid(Random& random);

}  // namespace kesu
