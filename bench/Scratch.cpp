#include "Scratch.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <thread>

#include "Stopwatch.h"

namespace kesu::bench {
namespace {

constexpr const char* kVariable = "KESU_BENCH_RUN_DIRECTORY";
constexpr double kUsualSecondsPerFile = 250e-6;
constexpr int kFiles = 50;

std::string runDirectory() {
  const char* const named = std::getenv(kVariable);
  return named != nullptr ? named : "";
}

std::string required(std::string directory) {
  if (directory.empty()) {
    throw std::runtime_error("No directory can be made");
  }
  return directory;
}

double usualSecondsToMake(const std::string& directory) {
  std::vector<double> times;
  for (int number = 0; number < kFiles; ++number) {
    const std::string path = directory + "/" + std::to_string(number);
    times.push_back(secondsOf([&] { ::close(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)); }));
    ::unlink(path.c_str());
  }
  return median(times);
}

}  // namespace

Scratch::Scratch() : path_(required(loopback::makeDirectory(runDirectory()))) {}

RunDirectory::RunDirectory(const std::string& parent) : directory_(parent) {
  ::setenv(kVariable, required(directory_.path()).c_str(), 1);
}

void RunDirectory::waitUntilFast() const {
  constexpr int kMostTries = 20;
  for (int count = 0; count < kMostTries && usualSecondsToMake(directory_.path()) > kUsualSecondsPerFile; ++count) {
    std::cerr << (count == 0 ? "Making files is slow here at the moment; waiting.\n" : "");
    std::this_thread::sleep_for(std::chrono::seconds(5));
  }
}

}  // namespace kesu::bench
