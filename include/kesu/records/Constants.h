#pragma once

#include <kesu/Export.h>

#include <string_view>

/// Names that hosts, collectors and the library share.
namespace kesu {

// Destinations of records: the collector's tables, as header "t" names them.
inline constexpr std::string_view k_TableInstalls = "i";
inline constexpr std::string_view k_TableStates = "s";
inline constexpr std::string_view k_TableEvents = "e";
inline constexpr std::string_view k_TableTraits = "t";
inline constexpr std::string_view k_TableUser = "u";
inline constexpr std::string_view k_TableSMS = "m";
inline constexpr std::string_view k_Table_iOSPermissions = "p";

/// The key of an event's name in its record. Keys that begin with "~" belong to the library: it replaces an attribute
/// of the host's by that name.
inline constexpr std::string_view k_KesuEventName = "~e";
inline constexpr std::string_view k_KesuEventGroup = "group";  ///< Reserved; no record carries it.

/// Posted on the main thread when the reachability of the collector may have changed, from the launch on. Its object
/// and its user information say nothing to a host.
inline constexpr std::string_view kKesuReachabilityChangedNotification = "kNetworkKesuReachabilityChangedNotification";

// Reasons (what()) of InternalInconsistencyException: no key, a second key, an object of Kesu made by the host.
KESU_API extern const std::string_view k_KesuAppKeyMissingException;
KESU_API extern const std::string_view k_KesuAppKeyDuplicateException;
KESU_API extern const std::string_view k_KesuLibraryInitializationException;

}  // namespace kesu
