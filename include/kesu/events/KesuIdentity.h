#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// The host's own user identifier, attached to the installation: every later record carries it, and each change is
/// reported at once as a user record. Any thread; returns before anything is sent. Before Kesu::initialize the
/// identifier is kept, but the user record names no installation.
class KESU_API KesuIdentity {
 public:
  KesuIdentity() = delete;

  /// Stores and reports the identifier. A missing identifier is stored as "" and not reported (level-2 log line);
  /// resetUserIdentifer() clears it. One that no record can carry, such as a text that is not UTF-8 or the null object,
  /// is refused with a level-0 line: nothing is reported, and later records carry no identifier. Kept: spelled so.
  /// [KesuIdentity setUserIdentifer:]
  static void setUserIdentifer(const Object& identifier);

  /// Removes the identifier and reports an empty one, also when there was none. [KesuIdentity resetUserIdentifer]
  static void resetUserIdentifer();

  /// Posts the host's traits of the user. Without any, the record has its context only. [KesuIdentity postTraits:]
  static void postTraits(const Attributes& traits);
};

}  // namespace kesu
