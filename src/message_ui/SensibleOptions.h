#pragma once

#include <kesu/message_ui/KesuInAppOptions.h>

namespace kesu {

/// Returns the options with insets and text scale clamped to what leaves a readable popup; not-a-number counts as
/// unset. Any thread.
KesuInAppOptions sensibleOptions(KesuInAppOptions options);

}  // namespace kesu
