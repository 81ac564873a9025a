#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// An activation that the host reports itself. It is sent as a trait of the installation, not as an event.
class KESU_API KesuExplicitActivation {
 public:
  KesuExplicitActivation() = delete;

  /// Posts the attributes with "~a:Activation" set to "1". Any thread; returns before anything is sent. Before
  /// Kesu::initialize the record carries no context. [KesuExplicitActivation post] and [KesuExplicitActivation post:]
  static void post(const Attributes& attributes = {});
};

}  // namespace kesu
