#include "tools/kesu-dev/commands/CommandLine.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>

#include "tools/kesu-dev/base/Text.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kNarrowest = 40;

// Takes the option's value in; returns what is wrong with it. Switches get an empty value.
using Apply = std::string (*)(CommandLine&, const std::string& value);

struct Option {
  std::string_view name;
  std::string_view commands;  // Letters of the commands that know it: s serve, r run, t tail, w show, m messages, p
                              // preview, c catalogue.
  bool takesValue;
  Apply apply;
};

template <auto Member>
std::string setPort(CommandLine& line, const std::string& value) {
  const auto port = parseDecimal(value);
  if (!port || *port > 65535) {
    return "a port is a number from 0 to 65535, not " + value;
  }
  line.services.*Member = static_cast<int>(*port);
  return {};
}

std::string setFormat(CommandLine& line, const std::string& value) {
  if (value != "human" && value != "json") {
    return "the format is human or json, not " + value;
  }
  line.format = value == "json" ? OutputFormat::Json : OutputFormat::Human;
  return {};
}

std::string setWidth(CommandLine& line, const std::string& value) {
  const auto width = parseDecimal(value);
  if (!width || *width < static_cast<std::int64_t>(kNarrowest) || *width > 1000) {
    return "the width is a number from 40 to 1000, not " + value;
  }
  line.width = static_cast<std::size_t>(*width);
  return {};
}

template <auto Member>
std::string setText(CommandLine& line, const std::string& value) {
  line.*Member = value;
  return {};
}

template <auto Member>
std::string setServed(CommandLine& line, const std::string& value) {
  line.services.*Member = value;
  return {};
}

std::string setMessages(CommandLine& line, const std::string& value) {
  std::error_code ignored;
  line.services.messages = value;
  return std::filesystem::is_directory(value, ignored) ? "" : "--messages needs a directory, not " + value;
}

std::string setOutput(CommandLine& line, const std::string& value) {
  line.preview.output = value;
  return value.empty() ? "-o needs the name of a file" : "";
}

std::string setSize(CommandLine& line, const std::string& value) {
  constexpr std::int64_t kSmallest = 64;
  constexpr std::int64_t kLargest = 4096;
  const std::size_t cross = value.find('x');
  const auto width = parseDecimal(value.substr(0, cross));
  const auto height = cross == std::string::npos ? std::nullopt : parseDecimal(value.substr(cross + 1));
  for (const auto& side : {width, height}) {
    if (!side || *side < kSmallest || *side > kLargest) {
      return "the size is WIDTHxHEIGHT, 64 to 4096 pixels each, not " + value;
    }
  }
  line.preview.width = static_cast<int>(*width);
  line.preview.height = static_cast<int>(*height);
  return {};
}

std::string setStrict(CommandLine& line, const std::string&) {
  line.services.strict = true;
  return {};
}

std::string setOnce(CommandLine& line, const std::string&) {
  line.command = Command::Show;
  return {};
}

std::string setAll(CommandLine& line, const std::string&) {
  line.fromStart = true;
  return {};
}

constexpr Option kOptions[] = {
    {"--port", "sr", true, setPort<&Services::Options::port>},
    {"--messaging-port", "sr", true, setPort<&Services::Options::messagingPort>},
    {"--messages", "sr", true, setMessages},
    {"--db", "sr", true, setServed<&Services::Options::database>},
    {"--db", "w", true, setText<&CommandLine::database>},
    {"--ready-file", "sr", true, setText<&CommandLine::readyFile>},
    {"--strict", "sr", false, setStrict},
    {"--home", "r", true, setText<&CommandLine::home>},
    {"--url", "twm", true, setText<&CommandLine::url>},
    {"--format", "twmc", true, setFormat},
    {"-f", "twmc", true, setFormat},
    {"--all", "t", false, setAll},
    {"--once", "t", false, setOnce},
    {"--width", "wm", true, setWidth},
    {"-o", "p", true, setOutput},
    {"--output", "p", true, setOutput},
    {"--size", "p", true, setSize},
};

struct CommandName {
  std::string_view name;
  Command command;
  char letter;
};

constexpr CommandName kCommands[] = {
    {"help", Command::Help, 'h'},         {"--help", Command::Help, 'h'},
    {"-h", Command::Help, 'h'},           {"version", Command::Version, 'v'},
    {"--version", Command::Version, 'v'}, {"serve", Command::Serve, 's'},
    {"run", Command::Run, 'r'},           {"tail", Command::Tail, 't'},
    {"show", Command::Show, 'w'},         {"catalogue", Command::Catalogue, 'c'},
    {"keys", Command::Keys, 'k'},         {"messages", Command::Messages, 'm'},
    {"preview", Command::Preview, 'p'},
};

const Option* findOption(std::string_view name, char letter) {
  const auto* found = std::find_if(std::begin(kOptions), std::end(kOptions), [&](const Option& option) {
    return option.name == name && option.commands.find(letter) != std::string_view::npos;
  });
  return found == std::end(kOptions) ? nullptr : found;
}

// Reads the options of a command up to the end or to "--"; the index of what follows is left in `next`.
std::string readOptions(const std::vector<std::string>& arguments, char letter, CommandLine& line, std::size_t& next) {
  while (next < arguments.size() && arguments[next] != "--") {
    std::string name = arguments[next++];
    std::optional<std::string> value;
    if (const std::size_t equals = name.find('='); name.starts_with("--") && equals != std::string::npos) {
      value = name.substr(equals + 1);
      name.resize(equals);
    }
    if (letter == 'p' && !name.starts_with('-') && line.preview.file.empty()) {
      line.preview.file = name;
      continue;
    }
    const Option* option = findOption(name, letter);
    if (option == nullptr) {
      return "unknown option " + name + (letter == 'r' ? " (the program to run follows behind --)" : "");
    }
    if (option->takesValue && !value && next < arguments.size()) {
      value = arguments[next++];
    }
    if (option->takesValue != value.has_value()) {
      return name + (option->takesValue ? " needs a value" : " takes no value");
    }
    if (std::string fault = option->apply(line, value.value_or("")); !fault.empty()) {
      return fault;
    }
  }
  return {};
}

void readChild(const std::vector<std::string>& arguments, std::size_t next, CommandLine& line) {
  if (next < arguments.size()) {
    line.child.assign(arguments.begin() + static_cast<std::ptrdiff_t>(next) + 1, arguments.end());
  }
  if (line.command == Command::Run && line.child.empty()) {
    line.error = "run needs a program: kesu-dev run -- PROGRAM ARGUMENTS";
  } else if (line.command != Command::Run && next < arguments.size()) {
    line.error = "only run takes a program behind --";
  }
}

}  // namespace

CommandLine parseCommandLine(const std::vector<std::string>& arguments) {
  CommandLine line;
  line.url = "http://127.0.0.1:" + std::to_string(Services::kDefaultPort);
  if (arguments.empty()) {
    line.error = "which command?";
    return line;
  }
  const auto* found = std::find_if(std::begin(kCommands), std::end(kCommands),
                                   [&](const CommandName& row) { return row.name == arguments.front(); });
  if (found == std::end(kCommands)) {
    line.error = "unknown command " + arguments.front();
    return line;
  }
  line.command = found->command;
  std::size_t next = 1;
  line.error = readOptions(arguments, found->letter, line, next);
  if (line.error.empty()) {
    readChild(arguments, next, line);
  }
  if (line.error.empty() && line.command == Command::Preview && line.preview.file.empty()) {
    line.error = "preview needs a message file";
  }
  return line;
}

std::string usageText() {
  return R"(kesu-dev: a collector and a messaging service on this machine, for integrating and testing the Kesu library.

  kesu-dev serve [OPTIONS]            serve until Ctrl-C
  kesu-dev run [OPTIONS] -- PROGRAM ARGUMENTS...
                                      run a program against services of its own; ends with the program's status and
                                      a summary of what it sent
  kesu-dev tail [OPTIONS]             one line for each record as it arrives at a running collector
  kesu-dev show [OPTIONS]             a table of all records so far (also: kesu-dev tail --once)
  kesu-dev messages [OPTIONS]         a table of the messages: how often each went out, its receipts, its button presses
  kesu-dev preview FILE [OPTIONS]     a message file in the library's popup, in a window with remote keys (arrows,
                                      Return, Escape), or as a picture
  kesu-dev catalogue [-f human|json]  every event of the catalogue: who posts it and what it says
  kesu-dev keys                       every short key of a record and its meaning
  kesu-dev help | version

serve and run:
  --port N           port on 127.0.0.1; 0 = any free one. Not given: 8470, or the next that is free
  --messages DIR     serve the messages in this directory (a JSON file each, pictures beside them, tags.json); edit them
                     while it runs. Not given: there are no messages
  --messaging-port N port of the messaging service. Not given: any free one with --port 0, else 8490 or the next
  --db FILE          keep the records in this SQLite file (default: in memory)
  --ready-file FILE  write the addresses there once the collector answers, as shell assignments; removed at the end
  --strict           answer bad records with 400 instead of 200 (the library then drops them)

run also:
  --home DIR         home directory of the library in the program. Not given: KESU_HOME when you have set it, else an
                     empty directory that is removed afterwards, so that every run is a first launch

tail, show and messages:
  --url URL          the collector (default http://127.0.0.1:8470)
  -f, --format F     human (default) or json: one JSON object a line
  --all              tail: begin with the records that are there
  --db FILE          show: read this file instead of asking a collector
  --width N          show, messages: columns of the table (default: those of the terminal, else 120)

preview:
  -o, --output FILE  write a PNG picture instead of opening a window
  --size WxH         of the screen in pixels (default 1920x1080)

run sets KESU_OVERRIDE_SERVER, KESU_REACHABILITY_HOST, KESU_MESSAGING_HOST, KESU_CA_FILE and KESU_HOME for the
program. Open the collector's address in a browser: records live with what every key means, messages with their
receipts, faults to switch on. GET /help lists the same for scripts.
)";
}

}  // namespace kesu::dev
