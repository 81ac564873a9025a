#pragma once

#include "tools/kesu-dev/commands/CommandLine.h"

namespace kesu::dev {

/// `kesu-dev tail`: prints each record as it arrives, through restarts of the collector. Ends by a signal, or with
/// status 1 when no collector answers at the start.
int runTail(const CommandLine& line);

/// `kesu-dev show`: prints all records so far. Returns the exit status.
int runShow(const CommandLine& line);

/// `kesu-dev messages`: prints the messages that are served and what became of them. Returns the exit status.
int runMessages(const CommandLine& line);

}  // namespace kesu::dev
