#pragma once

#include "tools/kesu-dev/commands/CommandLine.h"

namespace kesu::dev {

/// `kesu-dev preview`: shows a message file in the library's own popup, in a window with remote keys, or writes a
/// picture of it. Nothing leaves this process, and nothing is kept. Returns the exit status.
int runPreview(const CommandLine& line);

}  // namespace kesu::dev
