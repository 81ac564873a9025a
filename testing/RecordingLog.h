#pragma once

#include <kesu/platform/LogSink.h>

#include <string>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"

namespace kesu::testing {

/// A log sink that keeps its lines for the test.
class RecordingLog : public LogSink {
 public:
  struct Line {
    int level = 0;
    std::string text;
    friend bool operator==(const Line&, const Line&) = default;
  };

  void write(int level, std::string_view text) override {
    const MutexLock lock(mutex_);
    lines_.push_back({level, std::string(text)});
  }

  /// Removes and returns the lines so far, oldest first.
  std::vector<Line> takeLines() {
    const MutexLock lock(mutex_);
    return std::exchange(lines_, {});
  }

  /// Whether a line that was not taken yet contains `part`.
  bool contains(std::string_view part) {
    const MutexLock lock(mutex_);
    for (const Line& line : lines_) {
      if (line.text.find(part) != std::string::npos) {
        return true;
      }
    }
    return false;
  }

 private:
  Mutex mutex_;
  std::vector<Line> lines_ KESU_GUARDED_BY(mutex_);
};

}  // namespace kesu::testing
