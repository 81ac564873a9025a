#pragma once

#include <string>
#include <string_view>

namespace kesu {

/// Extension of store files. Everything else in the documents directory belongs to the host.
inline constexpr std::string_view kStoreExtension = "kesuCache";

/// Returns the name of a file stored at this time: microseconds since 2001-01-01 less 3650 days, as "c" and 16 digits
/// with a "-" before the last 8, and the extension. Later names sort later.
std::string storeFileName(double secondsSince1970);

/// Returns whether a path ends in a store file's name.
bool isStoreFile(std::string_view path);

}  // namespace kesu
