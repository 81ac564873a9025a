#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "ScriptClock.h"
#include "ScriptLine.h"

namespace tv {

/// A host without a screen: executes the lines of a script on the main thread and pumps the library's main loop between
/// them.
class ScriptHost {
 public:
  using Command = std::function<void(const ScriptLine&)>;

  /// `clock` is the library's; it must outlive the host.
  explicit ScriptHost(ScriptClock& clock);

  /// Adds a command, which throws std::runtime_error with a reason to end the script.
  void add(const std::string& name, Command command) { table_[name] = std::move(command); }

  /// Executes one line. Returns false, with a reason in error(), for an unknown command or misuse of the library.
  bool perform(const ScriptLine& line);

  /// Whether the script has said "quit".
  bool hasQuit() const { return hasQuit_; }

  const std::string& error() const { return error_; }

  /// Runs the main loop for so many seconds, sleeping while there is nothing to do.
  static void pumpFor(double seconds);

 private:
  void callCatalogue(const ScriptLine& line);
  void addLifeCycle();
  void addEvents();
  void addScript();

  ScriptClock& clock_;
  std::map<std::string, Command> table_;
  std::map<std::string, double> timers_;  // Name -> timer reference.
  bool hasQuit_ = false;
  std::string error_;
};

}  // namespace tv
