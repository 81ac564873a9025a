#include "ReadyFile.h"

#include <filesystem>
#include <fstream>
#include <system_error>

namespace kesu::dev {

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
  const std::string temporary = path + ".new";
  std::ofstream file(temporary, std::ios::trunc);
  file << "KESU_DEV_URL=" << services.url() << "\nKESU_OVERRIDE_SERVER=" << services.recordUrl()
       << "\nKESU_REACHABILITY_HOST=" << services.hostAndPort() << "\n";
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
