#pragma once

#include <string_view>

namespace kesu {

// Destination codes: which of the collector's tables a record is meant for.
inline constexpr std::string_view k_TableInstalls = "i";
inline constexpr std::string_view k_TableStates = "s";
inline constexpr std::string_view k_TableEvents = "e";
inline constexpr std::string_view k_TableTraits = "t";
inline constexpr std::string_view k_TableUser = "u";
inline constexpr std::string_view k_TableSMS = "m";
inline constexpr std::string_view k_Table_iOSPermissions = "p";
inline constexpr std::string_view kTableNotifications = "n";  ///< Message receipts and calls to action.

/// Stands for the destination of a record that has none.
inline constexpr std::string_view kUnknownDestination = "UnknownDestination";

}  // namespace kesu
