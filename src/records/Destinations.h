#pragma once

#include <string_view>

namespace kesu {

// Destination codes: the collector's table for a record.
inline constexpr std::string_view k_TableInstalls = "i";
inline constexpr std::string_view k_TableStates = "s";
inline constexpr std::string_view k_TableEvents = "e";
inline constexpr std::string_view k_TableTraits = "t";
inline constexpr std::string_view k_TableUser = "u";
inline constexpr std::string_view k_TableSMS = "m";
inline constexpr std::string_view k_Table_iOSPermissions = "p";
inline constexpr std::string_view kTableNotifications = "n";  ///< Message receipts and calls to action.

/// The destination of a record without one.
inline constexpr std::string_view kUnknownDestination = "UnknownDestination";

}  // namespace kesu
