#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tools/kesu-dev/commands/Services.h"

namespace kesu::dev {

enum class Command { Help, Version, Serve, Run, Tail, Show, Messages, Preview, Catalogue, Keys };

enum class OutputFormat { Human, Json };

/// What `kesu-dev preview` shows, and where.
struct PreviewOptions {
  std::string file;    // A message file.
  std::string output;  // The PNG file to be written; empty = a window.
  int width = 1920;    // In pixels.
  int height = 1080;
};

/// What the user asked for.
struct CommandLine {
  Command command = Command::Help;

  // serve, run
  Services::Options services;
  std::string readyFile;           // Written once the services answer; empty = none.
  std::string home;                // run: home directory of the application; empty = see usageText().
  std::vector<std::string> child;  // run: the program and its arguments.

  // tail, show, messages, catalogue
  std::string url;       // The running server.
  std::string database;  // show: read this file instead of asking a server; empty = ask.
  OutputFormat format = OutputFormat::Human;
  bool fromStart = false;  // tail: begin with what is there already.
  std::size_t width = 0;   // show: columns; 0 = the terminal's, or 120.

  PreviewOptions preview;

  /// What is wrong with the command line; empty when nothing is.
  std::string error;
};

/// Reads the arguments behind the program's name. Pure.
CommandLine parseCommandLine(const std::vector<std::string>& arguments);

/// What `kesu-dev help` prints.
std::string usageText();

}  // namespace kesu::dev
