#pragma once

#include <string>

namespace kesu {

/// Writes a diagnostic line of a platform service: through the library's logger and its threshold once that exists,
/// nowhere before. `level`: 0 always shown, 2 warning, 3 verbose. Any thread.
void serviceLog(int level, const std::string& text);

/// Sets the receiver of the lines of serviceLog(); null drops them. The logger sets it when it is created. Any thread.
void setServiceLogHandler(void (*handler)(int level, const std::string& text));

}  // namespace kesu
