#pragma once

#include <cstdint>

namespace kesu {

/// Which in-app messages an operation is about. A host may pass any other number (by static_cast): what happens then is
/// said where it is taken.
enum class KesuInAppMessageType : std::int64_t {
  Unread = 0,  ///< Those that the service has for this installation.
  Read = 1,    ///< Those that were fetched before, from the user defaults only.
  All = 2      ///< Both.
};

}  // namespace kesu
