#pragma once

#include <filesystem>
#include <set>
#include <string>

#include "tools/loopback/TemporaryDirectory.h"

namespace kesu::testing {

using loopback::TemporaryDirectory;

/// The names of a directory that end in `suffix`, sorted.
inline std::set<std::string> namesIn(const std::string& directory, const std::string& suffix = {}) {
  std::set<std::string> found;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    if (entry.path().string().ends_with(suffix)) {
      found.insert(entry.path().filename());
    }
  }
  return found;
}

}  // namespace kesu::testing
