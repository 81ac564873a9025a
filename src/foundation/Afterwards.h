#pragma once

#include <utility>

namespace kesu {

/// Runs `step` after `call`, also when a function of the host in it throws: the exception is passed on, but the library
/// finishes what it has begun.
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
