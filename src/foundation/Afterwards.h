#pragma once

#include <utility>

namespace kesu {

/// Runs `step` when `call` is over, also when a function of the host in it throws: what that throws goes on, but must
/// not keep the library from finishing what it has begun.
template <typename Call, typename Step>
void afterwards(Call&& call, Step&& step) {
  try {
    std::forward<Call>(call)();
  } catch (...) {
    step();
    throw;
  }
  step();
}

}  // namespace kesu
