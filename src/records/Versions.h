#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kesu {

/// Version of the record format and of the client as the collector knows them. Independent of the library's own
/// version.
inline constexpr std::int64_t k_KesuDataVersionNumber = 10;
inline constexpr std::string_view k_osNameId = "i";
inline constexpr std::string_view k_SDKVersion = "3.2.3";

// Shown in the start-up banner.
inline constexpr const char* kBuildDate = "Mar 15 2017";
inline constexpr const char* kBuildTime = "12:02:00";

/// Returns "10-i-3.2.3": header "v" and column "~v" of every record.
std::string fullVersionText();

}  // namespace kesu
