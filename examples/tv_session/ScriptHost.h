#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "ScriptClock.h"
#include "ScriptLine.h"

namespace tv {

/// A host without a screen: does what the lines of a script say, on the main thread, with the library's main loop
/// pumped in between.
class ScriptHost {
 public:
  using Command = std::function<void(const ScriptLine&)>;

  /// `clock` is the one that the library uses; it must outlive the host.
  explicit ScriptHost(ScriptClock& clock);

  /// Adds a command. It throws std::runtime_error with a reason to end the script.
  void add(const std::string& name, Command command) { table_[name] = std::move(command); }

  /// Does one line. False, with a reason in error(), for an unknown command or misuse of the library.
  bool perform(const ScriptLine& line);

  /// Whether the script has said "quit".
  bool hasQuit() const { return hasQuit_; }

  const std::string& error() const { return error_; }

  /// Runs the main loop for so many seconds, sleeping while there is nothing to do.
  static void pumpFor(double seconds);

  /// A line a command, for --help.
  static const char* commands();

 private:
  void callCatalogue(const ScriptLine& line);
  void addLifeCycle();
  void addEvents();
  void addUser();
  void addScript();

  ScriptClock& clock_;
  std::map<std::string, Command> table_;
  std::map<std::string, double> timers_;  // Name -> timer reference.
  bool hasQuit_ = false;
  std::string error_;
};

}  // namespace tv
