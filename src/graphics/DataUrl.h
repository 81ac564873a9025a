#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kesu {

/// Whether the text begins with "data:" (in any letter case).
bool isDataUrl(std::string_view url);

/// The bytes that a "data:" URL carries, Base64 or percent-encoded, up to a "#"; its media type is not looked at.
/// Nothing for other URLs, without a comma and for damaged Base64. Takes as long as the text is: pictures belong off
/// the main thread. Any thread.
std::optional<std::string> dataOfUrl(std::string_view url);

}  // namespace kesu
