#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "tools/kesu-dev/commands/Signals.h"

namespace kesu::dev {

/// How the start of a program turned out.
struct StartedProgram {
  pid_t pid = -1;
  int error = 0;  // errno of fork or exec; 0 = the program runs.
};

/// Starts a program, found like a shell finds it, with the signals as they were before they were blocked. It receives
/// SIGTERM when this process dies.
StartedProgram startProgram(std::vector<std::string> arguments, std::vector<std::string> environment,
                            const BlockedSignals& signals);

/// Waits for the end of a program and forwards the signals that only this process received. After the first of them it
/// is killed if it takes more than ten seconds. Returns its exit status, 128 + N when signal N ended it.
int waitForProgram(pid_t pid, const BlockedSignals& signals);

/// The environment of this process ("NAME=value" each).
std::vector<std::string> ownEnvironment();

/// An environment with some variables replaced or added. Pure.
std::vector<std::string> environmentWith(const std::vector<std::string>& environment,
                                         const std::vector<std::string>& replacements);

}  // namespace kesu::dev
