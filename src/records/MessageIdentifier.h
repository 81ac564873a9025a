#pragma once

#include <kesu/platform/Random.h>

#include <string>

namespace kesu {

/// Returns a fresh identifier of 22 characters: the 16 bytes of a new random UUID in base64 without padding. Any
/// thread. [Kesu base64UUID:]
std::string newBase64Uuid(Random& random);

}  // namespace kesu
