#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/linux/outbox/LinuxAppendLog.h"
#include "testing/TemporaryDirectory.h"

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

/// A directory in which processes keep their logs.
class OutboxDirectoryTest : public ::testing::Test {
 protected:
  std::string path() const { return directory_ / "Outbox"; }
  std::unique_ptr<LinuxAppendLog> open(SegmentAccess access = SegmentAccess::WhereSafe) const {
    return std::make_unique<LinuxAppendLog>(path(), access);
  }

  TemporaryDirectory directory_;
};

/// A text that tells whether it is whole: of its own length for each number, 0 to 5,000 bytes.
inline std::string numberedText(unsigned number) {
  return std::to_string(number) + std::string(number * 37 % 5000, static_cast<char>('a' + number % 26));
}

}  // namespace kesu::testing
