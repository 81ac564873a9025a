#pragma once

#include <string>

namespace tv {

/// The options of the command line.
struct Options {
  std::string stateFile;  ///< For tests: gets a line for every change of screen or focus. Empty for none.
  int width = 1920;
  int height = 1080;
  bool isFullScreen = false;
  bool showsMessages = false;
  bool wantsHelp = false;
  std::string error;  ///< Empty without an error.
};

Options parseOptions(int argc, char** argv);

}  // namespace tv
