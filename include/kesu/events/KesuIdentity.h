#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// The host's own user identifier, attached to the installation: every later record carries it, and each change is
/// reported at once as a user record. Any thread; returns before anything is sent.
class KESU_API KesuIdentity {
 public:
  KesuIdentity() = delete;

  /// [KesuIdentity setUserIdentifer:] Keeps and reports the identifier. Kept: spelled so. A missing identifier is kept
  /// as "" and cannot be reported; resetUserIdentifer() is the way to clear it.
  static void setUserIdentifer(const Object& identifier);

  /// [KesuIdentity resetUserIdentifer] Forgets the identifier and reports an empty one, also when there was none.
  static void resetUserIdentifer();

  /// [KesuIdentity postTraits:] Posts the host's traits of the user. Without any, the record has its context only.
  static void postTraits(const Attributes& traits);
};

}  // namespace kesu
