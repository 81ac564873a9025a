#pragma once

#include <string_view>

namespace kesu {

// Posted by kesu::Application on the main thread; the library's manager listens, and a host may.
inline constexpr std::string_view kApplicationDidFinishLaunchingNotification =
    "KesuApplicationDidFinishLaunchingNotification";
inline constexpr std::string_view kApplicationDidEnterBackgroundNotification =
    "KesuApplicationDidEnterBackgroundNotification";
inline constexpr std::string_view kApplicationWillEnterForegroundNotification =
    "KesuApplicationWillEnterForegroundNotification";
inline constexpr std::string_view kApplicationWillTerminateNotification = "KesuApplicationWillTerminateNotification";
inline constexpr std::string_view kApplicationDidReceiveMemoryWarningNotification =
    "KesuApplicationDidReceiveMemoryWarningNotification";
inline constexpr std::string_view kCurrentLocaleDidChangeNotification = "KesuCurrentLocaleDidChangeNotification";

}  // namespace kesu
