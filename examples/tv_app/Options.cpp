#include "Options.h"

#include <charconv>
#include <system_error>

namespace tv {
namespace {

constexpr int kLargestSide = 8192;

bool parseSize(const std::string& text, Options& options) {
  const char* const end = text.data() + text.size();
  const auto [x, noWidth] = std::from_chars(text.data(), end, options.width);
  if (noWidth != std::errc() || x == end || *x != 'x') {
    return false;
  }
  const auto [rest, noHeight] = std::from_chars(x + 1, end, options.height);
  return noHeight == std::errc() && rest == end && options.width > 0 && options.height > 0 &&
         options.width <= kLargestSide && options.height <= kLargestSide;
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
