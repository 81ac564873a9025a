#pragma once

#include <string>
#include <vector>

#include "tools/kesu-dev/commands/CommandLine.h"

namespace kesu::dev {

/// `kesu-dev run`: starts the services and a program that talks to them, and ends with it.
///
/// The program's standard streams are ours; what kesu-dev itself says goes to standard error. The program gets SIGTERM
/// when kesu-dev dies in whatever way, and every SIGTERM, SIGHUP and SIGINT that is sent to kesu-dev alone; after the
/// first of these it has ten seconds.
///
/// Returns the program's exit status, 128 + N when signal N ended it, 127 when there is no such program, 126 when it
/// cannot be run, 1 when the services cannot start.
int runProgram(const CommandLine& line);

/// An environment ("NAME=value" each) with some variables replaced or added. Pure.
std::vector<std::string> environmentWith(const std::vector<std::string>& environment,
                                         const std::vector<std::string>& replacements);

}  // namespace kesu::dev
