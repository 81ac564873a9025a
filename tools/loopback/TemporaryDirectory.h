#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

namespace kesu::loopback {

/// Makes a new empty directory, for this user only, below `parent` (empty: the system's directory for temporary files).
/// Returns its absolute path; empty when it could not be made.
inline std::string makeDirectory(const std::string& parent = {}) {
  std::error_code error;
  const std::filesystem::path above = parent.empty() ? std::filesystem::temp_directory_path(error).string() : parent;
  std::string name = (std::filesystem::absolute(above, error) / "kesu-XXXXXX").string();
  return !above.empty() && ::mkdtemp(name.data()) != nullptr ? name : std::string();
}

/// A new empty directory, removed with all that is in it when the object is destroyed.
class TemporaryDirectory {
 public:
  explicit TemporaryDirectory(const std::string& parent = {}) : path_(makeDirectory(parent)) {}
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
  const std::string path_;
};

}  // namespace kesu::loopback
