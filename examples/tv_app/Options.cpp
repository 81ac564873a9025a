#include "Options.h"

#include <cstdio>

namespace tv {
namespace {

constexpr int kLargestSide = 8192;

bool parseSize(const std::string& text, Options& options) {
  char rest = 0;
  return std::sscanf(text.c_str(), "%5dx%5d%c", &options.width, &options.height, &rest) == 2 && options.width > 0 &&
         options.height > 0 && options.width <= kLargestSide && options.height <= kLargestSide;
}

bool takeFlag(const std::string& name, Options& options) {
  if (name == "--fullscreen") {
    options.isFullScreen = true;
  } else if (name == "--show-messages") {
    options.showsMessages = true;
  } else if (name == "--help") {
    options.wantsHelp = true;
  } else {
    return false;
  }
  return true;
}

bool takeValue(const std::string& name, const std::string& value, Options& options) {
  if (name == "--state") {
    options.stateFile = value;
    return !value.empty();
  }
  return name == "--size" && parseSize(value, options);
}

}  // namespace

Options parseOptions(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc && options.error.empty(); ++i) {
    const std::string name = argv[i];
    if (takeFlag(name, options)) {
      continue;
    }
    if (i + 1 >= argc || !takeValue(name, argv[i + 1], options)) {
      options.error = "cannot understand " + name + (i + 1 < argc ? std::string(" ") + argv[i + 1] : "");
    }
    ++i;
  }
  return options;
}

}  // namespace tv
