#include "Scratch.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <thread>

#include "Stopwatch.h"

namespace kesu::bench {
namespace {

constexpr const char* kVariable = "KESU_BENCH_RUN_DIRECTORY";
constexpr double kUsualSecondsAFile = 250e-6;
constexpr int kFiles = 50;

std::string newDirectory(const std::string& parent) {
  std::string name = parent + "/kesu-bench-XXXXXX";
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("No directory can be made in " + parent);
  }
  return name;
}

std::string runDirectory() {
  const char* const named = std::getenv(kVariable);
  return named != nullptr ? named : std::filesystem::temp_directory_path().string();
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

Scratch::Scratch() : path_(newDirectory(runDirectory())) {}

RunDirectory::RunDirectory(const std::string& parent)
    : path_(newDirectory(parent.empty() ? std::filesystem::temp_directory_path().string() : parent)) {
  ::setenv(kVariable, path_.c_str(), 1);
}

RunDirectory::~RunDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void RunDirectory::waitUntilFast() const {
  constexpr int kMostTries = 20;
  for (int count = 0; count < kMostTries && usualSecondsToMake(path_) > kUsualSecondsAFile; ++count) {
    std::cerr << (count == 0 ? "Making files is slow here at the moment; waiting.\n" : "");
    std::this_thread::sleep_for(std::chrono::seconds(5));
  }
}

}  // namespace kesu::bench
