#pragma once

#include <kesu/records/Constants.h>

#include <string_view>

namespace kesu {

// Beside the destinations that hosts know.
inline constexpr std::string_view kTableNotifications = "n";  ///< Message receipts and calls to action.

/// The destination of a record without one.
inline constexpr std::string_view kUnknownDestination = "UnknownDestination";

}  // namespace kesu
