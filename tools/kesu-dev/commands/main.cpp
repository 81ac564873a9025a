#include <kesu/Version.h>

#include <cstdio>
#include <memory>
#include <string>

#include "CatalogueDescription.h"
#include "tools/kesu-dev/base/CommandLine.h"
#include "tools/kesu-dev/base/Console.h"
#include "tools/kesu-dev/commands/Commands.h"
#include "tools/kesu-dev/records/KeyTable.h"

namespace {

void addCatalogueCommand(kesu::dev::Program& program) {
  const auto asJson = std::make_shared<bool>(false);
  kesu::dev::Command command =
      program.command("catalogue", "print every event of the catalogue: who posts it and what it says", [asJson] {
        kesu::dev::print(*asJson ? kesu::catalogue::catalogueAsJson() + "\n" : kesu::catalogue::catalogueAsText());
        return 0;
      });
  addFormatOption(command, "one JSON object", *asJson);
}

void addKeysCommand(kesu::dev::Program& program) {
  program.command("keys", "print every short key of a record and its meaning", [] {
    for (const kesu::dev::KeyInfo& key : kesu::dev::allKeys()) {
      std::printf("%-20s %s\n", std::string(key.key).c_str(), std::string(key.meaning).c_str());
    }
    return 0;
  });
}

}  // namespace

int main(int argc, char** argv) {
  kesu::dev::Program program(
      "kesu-dev", KESU_VERSION,
      "kesu-dev: a collector and a messaging service on this machine, for integrating and testing the Kesu library.",
      "COMMAND --help lists the options of a command. Open the collector's address in a browser: records live with "
      "the\n"
      "meaning of every key, messages with their receipts, faults to switch on. GET /help there lists it for scripts.");
  addServeCommand(program);
  addRunCommand(program);
  addWatchCommands(program);
  addPreviewCommand(program);
  addCatalogueCommand(program);
  addKeysCommand(program);
  return program.run(argc, argv);
}
