#include <kesu/Version.h>

#include <cstdio>
#include <string>
#include <vector>

#include "CatalogueDescription.h"
#include "tools/kesu-dev/commands/CommandLine.h"
#include "tools/kesu-dev/commands/Preview.h"
#include "tools/kesu-dev/commands/RunCommand.h"
#include "tools/kesu-dev/commands/ServeCommand.h"
#include "tools/kesu-dev/commands/WatchCommand.h"
#include "tools/kesu-dev/records/KeyTable.h"

namespace {

constexpr int kUsageError = 2;

int printCatalogue(const kesu::dev::CommandLine& line) {
  const bool json = line.format == kesu::dev::OutputFormat::Json;
  const std::string text = json ? kesu::catalogue::catalogueAsJson() + "\n" : kesu::catalogue::catalogueAsText();
  std::fputs(text.c_str(), stdout);
  return 0;
}

int printKeys() {
  for (const kesu::dev::KeyInfo& key : kesu::dev::allKeys()) {
    std::printf("%-20s %s\n", std::string(key.key).c_str(), std::string(key.meaning).c_str());
  }
  return 0;
}

int execute(const kesu::dev::CommandLine& line) {
  switch (line.command) {
    case kesu::dev::Command::Help:
      std::fputs(kesu::dev::usageText().c_str(), stdout);
      return 0;
    case kesu::dev::Command::Version:
      std::puts("kesu-dev " KESU_VERSION);
      return 0;
    case kesu::dev::Command::Serve:
      return kesu::dev::runServe(line);
    case kesu::dev::Command::Run:
      return kesu::dev::runProgram(line);
    case kesu::dev::Command::Tail:
      return kesu::dev::runTail(line);
    case kesu::dev::Command::Show:
      return kesu::dev::runShow(line);
    case kesu::dev::Command::Messages:
      return kesu::dev::runMessages(line);
    case kesu::dev::Command::Preview:
      return kesu::dev::runPreview(line);
    case kesu::dev::Command::Catalogue:
      return printCatalogue(line);
    case kesu::dev::Command::Keys:
      return printKeys();
  }
  return kUsageError;
}

}  // namespace

int main(int argc, char** argv) {
  const kesu::dev::CommandLine line = kesu::dev::parseCommandLine({argv + 1, argv + argc});
  if (!line.error.empty()) {
    std::fprintf(stderr, "kesu-dev: %s (kesu-dev help explains)\n", line.error.c_str());
    return kUsageError;
  }
  return execute(line);
}
