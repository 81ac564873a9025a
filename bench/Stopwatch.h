#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>
#include <vector>

namespace kesu::bench {

inline constexpr double kMillisecondsPerSecond = 1e3;

inline double secondsNow() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// What a call takes, in seconds.
template <typename Call>
double secondsOf(Call&& call) {
  const double start = secondsNow();
  call();
  return secondsNow() - start;
}

/// The value below which `share` (0 to 1) of the samples lie; 0 without samples.
inline double quantile(std::vector<double> samples, double share) {
  if (samples.empty()) {
    return 0.0;
  }
  const auto rank = static_cast<std::size_t>(share * static_cast<double>(samples.size() - 1));
  std::nth_element(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(rank), samples.end());
  return samples[rank];
}

inline double median(std::vector<double> samples) {
  return quantile(std::move(samples), 0.5);
}

/// The samples [first, first + count).
inline std::vector<double> window(const std::vector<double>& samples, std::size_t first, std::size_t count) {
  const auto begin = samples.begin() + static_cast<std::ptrdiff_t>(first);
  return {begin, begin + static_cast<std::ptrdiff_t>(count)};
}

/// Keeps the compiler from leaving out what made `value`.
template <typename T>
void keep(const T& value) {
  asm volatile("" : : "g"(&value) : "memory");
}

}  // namespace kesu::bench
