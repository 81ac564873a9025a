#pragma once

#include <kesu/foundation/Value.h>

namespace kesu {

/// Logs the "payload" of a message body at level 3: its texts, its picture and colours, and one line per button.
/// Missing entries are "(null)". Only at that level: the console belongs to the host, and what its users receive is
/// private by default. Any thread. [logMessageContent:]
void logMessageContent(const Dictionary& body);

}  // namespace kesu
