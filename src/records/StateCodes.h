#pragma once

namespace kesu {

// One character a life-cycle transition; it travels in the record.
inline constexpr char kStateLaunch = 'l';
inline constexpr char kStateBackground = 'b';
inline constexpr char kStateResume = 'r';
inline constexpr char kStateTerminate = 't';
inline constexpr char kStateAppeared = 'a';
inline constexpr char kStateDisappeared = 'd';

/// What fixed details say of the launch and the end.
inline constexpr const char* kLaunchDetailText = "Foreground Inactive";
inline constexpr const char* kTerminateDetailText = "from foreground";

}  // namespace kesu
