#include "tools/kesu-dev/base/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

#include "tools/kesu-dev/base/Text.h"

namespace kesu::dev {

struct ProgramState {
  CLI::App app;
  const CLI::App* forwarding = nullptr;  // The command that receives the arguments behind "--".
  std::vector<std::string>* behindDashes = nullptr;
  int status = 0;
};

namespace {

constexpr int kUsageError = 2;
constexpr std::size_t kOptionColumns = 26;  // The longest option of kesu-dev and a gap.

// Hands the arguments behind "--" to their command. Called once all others were read, before any command is executed.
void forward(ProgramState& program, bool hasDashes, std::vector<std::string> arguments) {
  const auto chosen = program.app.get_subcommands();
  if (chosen.empty()) {
    throw CLI::RequiredError("a command");
  }
  const bool forwards = chosen.front() == program.forwarding;
  if (forwards && arguments.empty()) {
    throw CLI::RequiredError("a program behind --");
  }
  if (!forwards && hasDashes) {
    throw CLI::ExtrasError({"--"});
  }
  if (forwards) {
    *program.behindDashes = std::move(arguments);
  }
}

}  // namespace

void Command::option(const std::string& names, const std::string& value, const std::string& help, Read read) {
  const auto store = [read = std::move(read)](const std::string& text) {
    if (const std::string fault = read(text); !fault.empty()) {
      throw CLI::ValidationError(fault);
    }
  };
  app_.add_option_function<std::string>(names, store, help)->option_text(value)->take_last();
}

void Command::option(const std::string& names, const std::string& value, const std::string& help, std::string& target) {
  option(names, value, help, [&target](const std::string& text) {
    target = text;
    return std::string();
  });
}

void Command::number(const std::string& name, int lowest, int highest, const std::string& help,
                     std::optional<int>& target) {
  option(name, "N", help, [=, &target](const std::string& text) {
    const std::optional<std::int64_t> number = parseDecimal(text);
    if (!number || *number < lowest || *number > highest) {
      return name + " takes a number from " + std::to_string(lowest) + " to " + std::to_string(highest) + ", not " +
             text;
    }
    target = static_cast<int>(*number);
    return std::string();
  });
}

void Command::flag(const std::string& name, const std::string& help, bool& target) {
  app_.add_flag(name, target, help)->disable_flag_override();
}

void Command::argument(const std::string& name, const std::string& help, std::string& target) {
  app_.add_option(name, target, help)->required()->option_text(" ");
}

void Command::argumentsBehindDashes(std::vector<std::string>& target) {
  program_.forwarding = &app_;
  program_.behindDashes = &target;
}

void Command::note(const std::string& text) {
  app_.footer(text);
}

void addFormatOption(Command& command, const std::string& jsonHelp, bool& asJson) {
  command.option("-f,--format", "FORMAT", "human (default), or json: " + jsonHelp,
                 [&asJson](const std::string& format) {
                   asJson = format == "json";
                   return asJson || format == "human" ? std::string() : "the format is human or json, not " + format;
                 });
}

Program::Program(const std::string& name, const std::string& version, const std::string& description,
                 const std::string& note)
    : state_(std::make_unique<ProgramState>()) {
  CLI::App& app = state_->app;
  app.name(name);
  app.description(description);
  app.set_help_flag("-h,--help", "print this text");
  app.require_subcommand(0, 1);
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app.get_formatter()->column_width(kOptionColumns);
  app.set_version_flag("--version", name + " " + version, "print the version");
  app.footer(note);
  command("help", "print this text", [&app, name] {
    // App::help() would explain the command "help".
    std::fputs(app.get_formatter()->make_help(&app, name, CLI::AppFormatMode::Normal).c_str(), stdout);
    return 0;
  });
  command("version", "print the version",
          [text = name + " " + version] { return std::puts(text.c_str()) < 0 ? 1 : 0; });
}

Program::~Program() = default;

Command Program::command(const std::string& name, const std::string& description, std::function<int()> execute) {
  CLI::App& app = *state_->app.add_subcommand(name, description);
  app.group("Commands");
  app.footer("");
  app.callback([state = state_.get(), execute = std::move(execute)] { state->status = execute(); });
  return Command(*state_, app);
}

int Program::run(int argc, char** argv) {
  // The arguments behind "--" are for another program. CLI11 must not see them: it would read "[a,b]" as a list.
  char** const end = argv + argc;
  char** const dashes = std::find(argv, end, std::string_view("--"));
  const std::vector<std::string> rest(dashes == end ? end : dashes + 1, end);
  CLI::App& app = state_->app;
  app.parse_complete_callback([&] { forward(*state_, dashes != end, rest); });
  try {
    app.parse(static_cast<int>(dashes - argv), argv);
  } catch (const CLI::Success& answered) {
    return app.exit(answered);
  } catch (const CLI::ParseError& error) {
    const std::string name = app.get_name();
    std::fprintf(stderr, "%s: %s (%s --help explains)\n", name.c_str(), error.what(), name.c_str());
    return kUsageError;
  }
  return state_->status;
}

}  // namespace kesu::dev
