#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kesu {

/// The warnings about a file of user defaults: each kind once in the life of a process, so that a disk that stays full
/// does not fill the log as well. Guarded by its owner, who logs them when it has no mutex locked: the host's log sink
/// may come back and ask for a value.
class DefaultsWarnings {
 public:
  enum class Kind {
    Failure,  ///< The file cannot be read or written.
    Damage    ///< Values were lost, or may have been.
  };

  /// Notes a line unless there was one of its kind before.
  void add(Kind kind, std::string line) {
    if (!std::exchange(kind == Kind::Failure ? hasFailure_ : hasDamage_, true)) {
      lines_.push_back(std::move(line));
    }
  }

  /// Removes and returns the lines that are not logged yet.
  std::vector<std::string> takeLines() { return std::exchange(lines_, {}); }

  bool hasLines() const { return !lines_.empty(); }

 private:
  bool hasFailure_ = false;
  bool hasDamage_ = false;
  std::vector<std::string> lines_;
};

}  // namespace kesu
