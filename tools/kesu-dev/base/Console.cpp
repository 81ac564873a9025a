#include "tools/kesu-dev/base/Console.h"

#include <cstdio>

namespace kesu::dev {

void print(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

void say(const std::string& line) {
  std::fprintf(stderr, "kesu-dev: %s\n", line.c_str());
}

int fail(const std::string& why) {
  say(why);
  return 1;
}

}  // namespace kesu::dev
