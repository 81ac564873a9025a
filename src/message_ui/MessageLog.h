#pragma once

#include <kesu/foundation/Value.h>

namespace kesu {

/// [logMessageContent:] Writes what a message body's "payload" holds, at level 3: its texts, its picture and colours,
/// and a line a button. Missing entries are "(null)". Any thread.
void logMessageContent(const Dictionary& body);

}  // namespace kesu
