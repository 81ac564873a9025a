#pragma once

#include <string>

namespace kesu {

/// Writes a diagnostic line of a platform service: through the library's logger and its threshold once that exists,
/// nowhere before. `level`: 0 always shown, 2 warning, 3 verbose. Any thread.
void serviceLog(int level, const std::string& text);

/// Names who gets the lines of serviceLog(); null for nobody. The logger calls this when it is created.
void setServiceLogHandler(void (*handler)(int level, const std::string& text));

}  // namespace kesu
