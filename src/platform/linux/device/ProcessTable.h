#pragma once

#include <kesu/platform/DeviceFacts.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kesu {

/// The system's description of one process.
struct ProcessDescription {
  ProcessFacts facts;           ///< With startSeconds still 0.
  std::int32_t parentId = 0;    ///< 0 for the first process of all.
  std::int64_t startTicks = 0;  ///< Since the start of the device.
};

/// Reads the one line of a process's "stat" file. A name may contain blanks and parentheses: it ends at the last one.
/// Pure.
std::optional<ProcessDescription> describedProcess(std::string_view stat);

/// Reads the description of one process in a directory such as "/proc"; nothing when there is none (any more). Any
/// thread.
std::optional<ProcessDescription> readProcess(const std::string& directory, std::int32_t processId);

/// Reads all processes of such a directory by ascending number, without those that end meanwhile; nothing when it
/// cannot be read or describes none. `bootSeconds` since 1970. Any thread.
std::optional<std::vector<ProcessFacts>> readProcesses(const std::string& directory, std::int64_t bootSeconds);

}  // namespace kesu
