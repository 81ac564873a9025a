#pragma once

namespace kesu {

// One character per life-cycle transition, as it travels in the record.
inline constexpr char kStateLaunch = 'l';
inline constexpr char kStateBackground = 'b';
inline constexpr char kStateResume = 'r';
inline constexpr char kStateTerminate = 't';
inline constexpr char kStateAppeared = 'a';
inline constexpr char kStateDisappeared = 'd';

/// The fixed details of launch and termination.
inline constexpr const char* kLaunchDetailText = "Foreground Inactive";
inline constexpr const char* kTerminateDetailText = "from foreground";

}  // namespace kesu
