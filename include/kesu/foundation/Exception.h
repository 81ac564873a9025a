#pragma once

#include <kesu/Export.h>

#include <stdexcept>
#include <string>

namespace kesu {

/// Thrown when the host misuses the library (no application key, a second key, posting before initialisation).
///
/// It is the only exception that leaves the library. It is thrown on the caller's thread, before anything is recorded.
/// kesu/records/Constants.h has the reasons.
class KESU_API InternalInconsistencyException : public std::logic_error {
 public:
  explicit InternalInconsistencyException(const std::string& reason) : std::logic_error(reason) {}

  /// Returns "NSInternalInconsistencyException".
  const char* name() const noexcept { return "NSInternalInconsistencyException"; }
};

}  // namespace kesu
