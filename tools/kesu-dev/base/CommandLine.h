#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kesu::dev {

struct ProgramState;

/// A command of a program while it is defined. Options write into variables that must live until the command has run;
/// of an option given twice the last value counts.
class Command {
 public:
  /// Stores the value of an option. Returns an empty text, or one sentence that says why the value is refused.
  using Read = std::function<std::string(const std::string& value)>;

  /// Adds an option with a value. `names` such as "-o,--output"; `value` names the value in the help text.
  void option(const std::string& names, const std::string& value, const std::string& help, Read read);

  /// The same for any text.
  void option(const std::string& names, const std::string& value, const std::string& help, std::string& target);

  /// The same for a number in decimal digits within these bounds.
  void number(const std::string& name, int lowest, int highest, const std::string& help, std::optional<int>& target);

  /// Adds an option without a value.
  void flag(const std::string& name, const std::string& help, bool& target);

  /// Adds an argument that must be given.
  void argument(const std::string& name, const std::string& help, std::string& target);

  /// Stores all arguments behind "--" unread; there must be at least one. One command per program may ask for them.
  void argumentsBehindDashes(std::vector<std::string>& target);

  /// Adds a paragraph to the end of the command's help text.
  void note(const std::string& text);

 private:
  friend class Program;

  Command(ProgramState& program, CLI::App& app) : program_(program), app_(app) {}

  ProgramState& program_;
  CLI::App& app_;
};

/// Adds -f, --format: "human", the default, or "json", in words of `jsonHelp`.
void addFormatOption(Command& command, const std::string& jsonHelp, bool& asJson);

/// A program with commands: "NAME COMMAND OPTIONS". Every command has --help.
///
/// Wraps CLI11, whose header takes seconds to compile: only CommandLine.cpp includes it.
class Program {
 public:
  /// `note` is the last paragraph of the help text.
  Program(const std::string& name, const std::string& version, const std::string& description, const std::string& note);
  ~Program();

  /// Adds a command. `execute` is called once all arguments were read, and returns the exit status.
  Command command(const std::string& name, const std::string& description, std::function<int()> execute);

  /// Reads the arguments and executes the command. Returns its exit status; 0 when help or the version was asked for, 2
  /// after printing to standard error what is wrong with the arguments.
  int run(int argc, char** argv);

 private:
  std::unique_ptr<ProgramState> state_;
};

}  // namespace kesu::dev
