#pragma once

#include <kesu/foundation/Value.h>

namespace kesu {

/// [logMessageContent:] Writes what a message body's "payload" holds, at level 3: its texts, its picture and colours,
/// and a line a button. Missing entries are "(null)". Only at that level: the console belongs to the host, and what its
/// users are sent is nobody's business by default. Any thread.
void logMessageContent(const Dictionary& body);

}  // namespace kesu
