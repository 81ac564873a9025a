#pragma once

#include <kesu/platform/Random.h>

#include <string>

namespace kesu {

/// A fresh identifier of 22 characters: the 16 bytes of a new random UUID in base64 without padding. Any thread.
std::string newBase64Uuid(Random& random);

/// [Kesu base64UUID:] The same for the UUID in `uuidString`; "" when the text is no UUID.
std::string base64UUID(const std::string& uuidString);

}  // namespace kesu
