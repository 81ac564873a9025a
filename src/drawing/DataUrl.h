#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kesu {

/// Whether the text begins with "data:" (in any letter case).
bool isDataUrl(std::string_view url);

/// Returns the bytes of a "data:" URL, Base64 or percent-encoded, up to a "#"; its media type is ignored.
/// Nothing for other URLs, without a comma and for damaged Base64. Takes time in proportion to the text: off the main
/// thread for pictures. Any thread.
std::optional<std::string> dataOfUrl(std::string_view url);

}  // namespace kesu
