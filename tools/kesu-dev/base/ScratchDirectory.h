#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace kesu::dev {

/// A new empty directory among the temporary files, removed with its content at the end.
class ScratchDirectory {
 public:
  ScratchDirectory() {
    std::error_code error;
    std::string name = (std::filesystem::temp_directory_path(error) / "kesu-dev-XXXXXX").string();
    path_ = ::mkdtemp(name.data()) != nullptr ? name : std::string();
  }
  ~ScratchDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;

  /// Empty when the directory could not be made.
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace kesu::dev
