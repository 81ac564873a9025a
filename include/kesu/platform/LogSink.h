#pragma once

#include <kesu/Export.h>

#include <string_view>

namespace kesu {

/// The destination of log lines. Called from any thread, sometimes with a mutex of the library locked: must not call
/// back into the library, which may hang, and must not post a record.
class KESU_API LogSink {
 public:
  virtual ~LogSink() = default;

  /// Writes one line. `level`: 0 always shown, 2 warning, 3 verbose. `text` has no line end.
  virtual void write(int level, std::string_view text) = 0;
};

}  // namespace kesu
