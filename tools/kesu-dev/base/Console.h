#pragma once

#include <string>

namespace kesu::dev {

/// Prints a text to standard output and flushes it: the reader of a pipe sees it at once.
void print(const std::string& text);

/// Prints a line for the developer to standard error. Any thread.
void say(const std::string& line);

/// Says why a command failed, and returns its exit status.
int fail(const std::string& why);

}  // namespace kesu::dev
