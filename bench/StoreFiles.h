#pragma once

#include <cstddef>
#include <string>

namespace kesu::bench {

/// The property list of a record of the usual size.
const std::string& usualRecordBytes();

/// What storing a record costs without the store: creates a file, writes it and renames it.
void writeAndRename(const std::string& directory, std::size_t number, const std::string& bytes);

}  // namespace kesu::bench
