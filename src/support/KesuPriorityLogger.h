#pragma once

#include <atomic>
#include <cstdint>

namespace kesu {

/// The one logger of the library: every diagnostic line goes through it, filtered by a single threshold.
///
/// A line of level L is written when the threshold is at least L: 0 is always shown, 2 is a warning, 3 is verbose. Any
/// thread; the threshold is a relaxed atomic, so that a change may be one line late. Use the macros below: they compare
/// before the arguments are evaluated, so that a suppressed line costs one comparison.
class KesuPriorityLogger {
 public:
  /// Returns the logger, which writes to the log sink of the installed platform. [KesuPriorityLogger sharedLogger]
  static KesuPriorityLogger& sharedLogger();

  constexpr KesuPriorityLogger() = default;

  void setLogLevel(std::uint64_t level) { kesuLogLevel_.store(level, std::memory_order_relaxed); }
  std::uint64_t logLevel() const { return kesuLogLevel_.load(std::memory_order_relaxed); }

  /// Returns whether a line of `level` would be written. The level is widened with its sign, so that a negative one is
  /// written only if everything is.
  bool shows(std::int32_t level) const {
    return logLevel() >= static_cast<std::uint64_t>(static_cast<std::int64_t>(level));
  }

  /// Formats (as printf does) and writes one line.
  [[gnu::format(printf, 3, 4)]] void logWithLevel(std::int32_t level, const char* format, ...);

  /// Writes the line with "[file:line]" in front, where only the last component of `filePath` is shown.
  [[gnu::format(printf, 5, 6)]] void logWithLevel(std::int32_t level, const char* filePath, unsigned long lineNo,
                                                  const char* format, ...);

  // Owed to hosts and to the agreed interface; no caller inside the library, as there is nothing to display.
  void display() const {}

 private:
  std::atomic<std::uint64_t> kesuLogLevel_{0};
};

namespace detail {
inline constinit KesuPriorityLogger sharedPriorityLogger;
}  // namespace detail

inline KesuPriorityLogger& KesuPriorityLogger::sharedLogger() {
  return detail::sharedPriorityLogger;
}

}  // namespace kesu

/// Writes a line: KESU_LOG(level, format, ...).
#define KESU_LOG(level, ...)                                                       \
  do {                                                                             \
    if (::kesu::KesuPriorityLogger::sharedLogger().shows(level)) {                 \
      ::kesu::KesuPriorityLogger::sharedLogger().logWithLevel(level, __VA_ARGS__); \
    }                                                                              \
  } while (false)

/// Writes a line with its origin: KESU_LOG_AT(level, "KesuStore", 114, format, ...). Name and number are part of the
/// text that people search for; they do not follow the source when it moves.
#define KESU_LOG_AT(level, file, line, ...)                                                                  \
  do {                                                                                                       \
    if (::kesu::KesuPriorityLogger::sharedLogger().shows(level)) {                                           \
      ::kesu::KesuPriorityLogger::sharedLogger().logWithLevel(level, file, static_cast<unsigned long>(line), \
                                                              __VA_ARGS__);                                  \
    }                                                                                                        \
  } while (false)
