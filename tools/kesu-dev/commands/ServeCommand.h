#pragma once

#include "tools/kesu-dev/commands/CommandLine.h"

namespace kesu::dev {

/// `kesu-dev serve`: serves until SIGINT, SIGTERM or SIGHUP. Returns the exit status.
int runServe(const CommandLine& line);

}  // namespace kesu::dev
