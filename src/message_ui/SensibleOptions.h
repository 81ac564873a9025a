#pragma once

#include <kesu/message_ui/KesuInAppOptions.h>

namespace kesu {

/// The options with insets and text scale held within what leaves a popup to look at; not-a-number counts as unset. Any
/// thread.
KesuInAppOptions sensibleOptions(KesuInAppOptions options);

}  // namespace kesu
