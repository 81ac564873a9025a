#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// The host's own user identifier, attached to the installation: every later record carries it, and each change is
/// reported at once as a user record. Any thread; returns before anything is sent.
class KESU_API KesuIdentity {
 public:
  KesuIdentity() = delete;

  /// Stores and reports the identifier. A missing identifier is stored as "" and not reported; resetUserIdentifer()
  /// clears it. Kept: spelled so. [KesuIdentity setUserIdentifer:]
  static void setUserIdentifer(const Object& identifier);

  /// Removes the identifier and reports an empty one, also when there was none. [KesuIdentity resetUserIdentifer]
  static void resetUserIdentifer();

  /// Posts the host's traits of the user. Without any, the record has its context only. [KesuIdentity postTraits:]
  static void postTraits(const Attributes& traits);
};

}  // namespace kesu
