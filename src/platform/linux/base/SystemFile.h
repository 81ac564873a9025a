#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace kesu {

/// The first `limit` bytes of a file of the system's own (/proc, /sys, /etc), whose size need not be what the system
/// says it is; nothing when it cannot be read or is no regular file. Never waits. Any thread.
std::optional<std::string> readSystemFile(const std::string& path, std::size_t limit = 16384);

}  // namespace kesu
