#pragma once

#include <kesu/foundation/Value.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kesu {

/// Encodes bytes as base64 (RFC 4648 alphabet, padded, without line breaks). Any thread.
std::string base64Encode(std::span<const std::uint8_t> bytes);

/// Decodes a base64 text; nothing when it is not one. ASCII white space may stand anywhere; padding may be
/// left out. Any thread.
std::optional<Data> base64Decode(std::string_view text);

}  // namespace kesu
