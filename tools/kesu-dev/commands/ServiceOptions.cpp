#include "tools/kesu-dev/commands/ServiceOptions.h"

#include <filesystem>
#include <system_error>

#include "tools/kesu-dev/base/Console.h"

namespace kesu::dev {
namespace {

constexpr int kHighestPort = 65535;

}  // namespace

void addServiceOptions(Command& command, ServiceOptions& options) {
  Services::Options& services = options.services;
  command.number("--port", 0, kHighestPort, "port on 127.0.0.1; 0 = any free one (default: 8470, or the next free one)",
                 services.port);
  command.option("--messages", "DIR",
                 "serve the messages in this directory: a JSON file each, pictures beside\n"
                 "them, tags.json. Edit them at any time (default: no messages)",
                 [&services](const std::string& directory) {
                   std::error_code ignored;
                   services.messages = directory;
                   return std::filesystem::is_directory(directory, ignored)
                              ? std::string()
                              : "--messages needs a directory, not " + directory;
                 });
  command.number("--messaging-port", 0, kHighestPort,
                 "port of the messaging service (default: any free one with --port 0,\n"
                 "else 8490 or the next free one)",
                 services.messagingPort);
  command.option("--db", "FILE", "keep the records in this SQLite file (default: in memory)", services.database);
  command.option("--ready-file", "FILE",
                 "write the addresses there once the services answer, as shell assignments;\n"
                 "removed at the end",
                 options.readyFile);
  command.flag("--strict", "answer bad records with 400 instead of 200 (the library then drops them)", services.strict);
}

std::unique_ptr<Services> startServices(const ServiceOptions& options, ReadyFile& readyFile) {
  std::string error;
  std::unique_ptr<Services> services = Services::start(options.services, error);
  if (services == nullptr) {
    say(error);
  } else if (!readyFile.write(options.readyFile, *services)) {
    say("cannot write the ready file " + options.readyFile);
    services = nullptr;
  }
  return services;
}

}  // namespace kesu::dev
