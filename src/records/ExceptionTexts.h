#pragma once

#include <string_view>

/// Reasons of the exceptions thrown for misuse by the host.
namespace kesu {

inline constexpr std::string_view k_KesuAppKeyMissingException =
    "KesuAppKey needs to be set via initializeWithKey: method. Log on to " KESU_BUILT_IN_CONSOLE_HOST " to get it.";

inline constexpr std::string_view k_KesuAppKeyDuplicateException = "KesuAppKey is already set and Kesu is initialized!";

inline constexpr std::string_view k_KesuLibraryInitializationException =
    "-init is not a valid initializer for Kesu. KesuAppKey needs to be set via initializeWithKey:  "
    "@\"<Your Kesu assigned App Key>\" ";

}  // namespace kesu
