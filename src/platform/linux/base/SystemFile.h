#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace kesu {

/// Reads the first `limit` bytes of a file of the system (/proc, /sys, /etc), whose reported size may be wrong; nothing
/// when it cannot be read or is no regular file. Never waits. Any thread.
std::optional<std::string> readSystemFile(const std::string& path, std::size_t limit = 16384);

}  // namespace kesu
