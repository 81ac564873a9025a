#pragma once

#include <memory>
#include <string>

#include "tools/kesu-dev/base/CommandLine.h"
#include "tools/kesu-dev/commands/ReadyFile.h"
#include "tools/kesu-dev/commands/Services.h"

namespace kesu::dev {

/// The options that `serve` and `run` share.
struct ServiceOptions {
  Services::Options services;
  std::string readyFile;  // Written once the services answer; empty = none.
};

void addServiceOptions(Command& command, ServiceOptions& options);

/// Starts the services and writes the ready file. Returns null after saying why on standard error.
std::unique_ptr<Services> startServices(const ServiceOptions& options, ReadyFile& readyFile);

}  // namespace kesu::dev
