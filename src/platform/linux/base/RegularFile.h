#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace kesu {

/// Reads a regular file of the installed application or system, links followed (packages are made of links);
/// nothing when it is missing, no regular file or larger than `limit` bytes. Never blocks on a FIFO. Any thread.
/// Files in the user's directories are read through the Files service, which follows no link.
std::optional<std::string> readRegularFile(const std::string& path, std::size_t limit);

}  // namespace kesu
