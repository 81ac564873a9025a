#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace kesu::testing {

/// A new empty directory on disk, removed with all that is in it at the end of the scope.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "kesu-test-XXXXXX").string();
    path_ = ::mkdtemp(name.data()) != nullptr ? name : std::string();
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  /// The directory's path; empty when it could not be made.
  const std::string& path() const { return path_; }

  /// The path of an entry in it.
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

  /// Writes and reads whole files, without the library.
  void write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path_ + "/" + name, std::ios::binary) << bytes;
  }
  std::string read(const std::string& name) const {
    std::ifstream file(path_ + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string path_;
};

}  // namespace kesu::testing
