#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

namespace kesu {

/// The flags of the way to the internet, kept so that every record can ask for them. Any thread.
///
/// A watcher of the network publishes them after every change: asking then costs one atomic read. While nobody
/// publishes, an answer is found by asking the kernel's tables (about 0.1 ms, nothing waits for the network) and kept
/// for a second.
class InternetFlags {
 public:
  explicit InternetFlags(std::string sysDirectory);

  /// The flags; nothing when they cannot be told.
  std::optional<std::uint32_t> get();

  /// Sets what get() answers from now on.
  void publish(std::optional<std::uint32_t> flags);

 private:
  std::string sysDirectory_;
  std::atomic<std::int64_t> published_;
  std::atomic<std::int64_t> kept_;
  std::atomic<std::int64_t> keptUntil_{0};  // Nanoseconds of the steady clock.
};

}  // namespace kesu
