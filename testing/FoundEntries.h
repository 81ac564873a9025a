#pragma once

#include <kesu/platform/AppendLog.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace kesu::testing {

/// One found entry, kept beyond the visit.
struct FoundEntry {
  AppendLog::Entry entry;
  bool isReleased = false;
  std::string preamble;
  std::string bytes;
};

inline std::vector<FoundEntry> recoverAll(AppendLog& log) {
  std::vector<FoundEntry> found;
  log.recover(0, [&](const AppendLog::Found& one) {
    found.push_back({one.entry, one.isReleased, std::string(one.preamble), std::string(one.bytes)});
  });
  return found;
}

inline std::string joined(const std::vector<FoundEntry>& found) {
  std::string text;
  for (const FoundEntry& one : found) {
    text += one.bytes + " ";
  }
  return text;
}

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

/// A text that tells whether it is whole: of its own length for each number, 0 to 5,000 bytes.
inline std::string numberedText(unsigned number) {
  return std::to_string(number) + std::string(number * 37 % 5000, static_cast<char>('a' + number % 26));
}

}  // namespace kesu::testing
