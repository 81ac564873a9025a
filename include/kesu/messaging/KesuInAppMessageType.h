#pragma once

#include <cstdint>

namespace kesu {

/// Which in-app messages an operation is about. A host may pass any other number (by static_cast); the operations say
/// what they do then.
enum class KesuInAppMessageType : std::int64_t {
  Unread = 0,  ///< New ones, which the service has for this installation.
  Read = 1,    ///< Fetched before; read from the user defaults, without a request.
  All = 2      ///< Both.
};

}  // namespace kesu
