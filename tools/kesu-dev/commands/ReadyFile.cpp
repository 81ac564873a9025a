#include "tools/kesu-dev/commands/ReadyFile.h"

#include <filesystem>
#include <fstream>
#include <system_error>

namespace kesu::dev {
namespace {

// "NAME='value'": the directory for temporary files may contain blanks.
std::string quotedForShell(const std::string& assignment) {
  const std::size_t equals = assignment.find('=');
  std::string text = assignment.substr(0, equals + 1) + "'";
  for (const char c : assignment.substr(equals + 1)) {
    text += c == '\'' ? "'\\''" : std::string(1, c);
  }
  return text + "'";
}

}  // namespace

ReadyFile::~ReadyFile() {
  std::error_code ignored;
  if (!path_.empty()) {
    std::filesystem::remove(path_, ignored);
  }
}

bool ReadyFile::write(const std::string& path, const Services& services) {
  if (path.empty()) {
    return true;
  }
  // Renamed once it is complete: scripts wait for the name to appear.
  const std::string temporary = path + ".new";
  std::ofstream file(temporary, std::ios::trunc);
  file << "KESU_DEV_URL=" << services.url() << "\n";
  for (const std::string& assignment : services.environment()) {
    file << quotedForShell(assignment) << "\n";
  }
  file.close();
  std::error_code error;
  std::filesystem::rename(temporary, path, error);
  if (file.fail() || error) {
    return false;
  }
  path_ = path;
  return true;
}

}  // namespace kesu::dev
