#pragma once

#include <string>

namespace kesu {

/// Returns whether the store of user defaults at `path` is proven to be damaged, or not ours: read anew, its content is
/// wrong, and every byte of the file and its journal can be read. SQLite reports many a failing read, a shortage of
/// memory or of descriptors as if the content was wrong; what cannot be read proves nothing. Reads the whole file; may
/// be called while the store is open.
bool isProvenDamaged(const std::string& path);

}  // namespace kesu
