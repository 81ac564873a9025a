#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

namespace kesu {

/// The flags of the route to the internet, kept so that every record can have them. Any thread.
///
/// A watcher of the network publishes them after every change: get() then costs one atomic read. Before that, get()
/// asks the kernel's tables (about 0.1 ms, never waits for the network) and keeps the answer for a second.
class InternetFlags {
 public:
  explicit InternetFlags(std::string sysDirectory);

  /// Returns the flags; nothing when they cannot be read.
  std::optional<std::uint32_t> get();

  /// Sets what get() returns from now on.
  void publish(std::optional<std::uint32_t> flags);

 private:
  std::string sysDirectory_;
  std::atomic<std::int64_t> published_;
  std::atomic<std::int64_t> kept_;
  std::atomic<std::int64_t> keptUntil_{0};  // Nanoseconds of the steady clock.
};

}  // namespace kesu
