#include "platform/linux/HomeDirectory.h"

#include <filesystem>
#include <system_error>

#include "platform/linux/LinuxBundle.h"
#include "platform/linux/base/Environment.h"

namespace kesu {
namespace {

namespace fs = std::filesystem;

std::string absolutePath(const std::string& path) {
  std::error_code error;
  return fs::absolute(path, error).string();
}

bool isPlainName(const std::string& name) {
  return !name.empty() && name.find('/') == std::string::npos && name.find('\0') == std::string::npos &&
         name.find("..") == std::string::npos && name != ".";
}

std::string applicationName(Bundle& bundle) {
  const std::string identifier = bundle.infoText("CFBundleIdentifier").value_or("");
  return isPlainName(identifier) ? identifier : fs::path(executablePath()).filename().string();
}

// Relative paths are invalid there and count as not set.
std::string dataDirectory() {
  if (const std::string data = environmentText("XDG_DATA_HOME"); data.starts_with('/')) {
    return data;
  }
  const std::string user = environmentText("HOME");
  return user.starts_with('/') ? user + "/.local/share" : std::string();
}

}  // namespace

std::string homeDirectory(const std::string& wanted, Bundle& bundle) {
  const std::string chosen = wanted.empty() ? environmentText("KESU_HOME") : wanted;
  if (!chosen.empty()) {
    return absolutePath(chosen);
  }
  const std::string data = dataDirectory();
  return data.empty() ? data : (fs::path(data) / applicationName(bundle)).string();
}

}  // namespace kesu
