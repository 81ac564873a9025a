#pragma once

#include <string>

#include "tools/kesu-dev/commands/Services.h"

namespace kesu::dev {

/// A file that tells scripts where the services answer: shell assignments (KESU_DEV_URL and those of
/// Services::environment()). It appears complete and is removed with this object.
class ReadyFile {
 public:
  /// No file yet.
  ReadyFile() = default;
  ~ReadyFile();

  ReadyFile(const ReadyFile&) = delete;
  ReadyFile& operator=(const ReadyFile&) = delete;

  /// Writes the file; an empty path writes none. Returns false when it cannot be written.
  bool write(const std::string& path, const Services& services);

 private:
  std::string path_;
};

}  // namespace kesu::dev
