#pragma once

#include <functional>
#include <thread>

namespace kesu {

/// Starts a thread that blocks all signals, which are the host's. `name` is what system tools show, at most 15
/// characters. The result is not joinable when the system refuses another thread; `body` then never runs. Any thread.
std::thread startServiceThread(const char* name, std::function<void()> body);

}  // namespace kesu
