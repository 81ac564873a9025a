#pragma once

#include <string_view>

namespace kesu {

/// Names the meaning of an HTTP status code in lower-case English ("not found"), for log lines. Codes without a meaning
/// of their own get that of their class ("client error"), 0 and other numbers outside 100 to 599 "server error". Any
/// thread.
std::string_view httpStatusText(int status);

}  // namespace kesu
