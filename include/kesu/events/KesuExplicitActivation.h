#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// An activation that the host reports itself. It goes out as a trait of the installation, not as an event.
class KESU_API KesuExplicitActivation {
 public:
  KesuExplicitActivation() = delete;

  /// [KesuExplicitActivation post] and [KesuExplicitActivation post:]
  /// Posts the attributes with "~a:Activation" set to "1". Any thread; returns before anything is sent. Before
  /// Kesu::initialize the record carries no context.
  static void post(const Attributes& attributes = {});
};

}  // namespace kesu
