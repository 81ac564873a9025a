#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Platform.h>

#include <string_view>

#include "device/KesuMetrics.h"
#include "lifecycle/AppInstance.h"
#include "lifecycle/Location.h"

namespace kesu {

/// Adds the context that every record carries. Any thread.
class CommonColumns {
 public:
  CommonColumns(Platform& platform, KesuMetrics& metrics, const AppInstance& instance, const Location& location)
      : platform_(platform), metrics_(metrics), instance_(instance), location_(location) {}

  /// Sets the columns in `record`, replacing entries of the same names. Does nothing before the library is initialised:
  /// such records carry no context. [addCommonColumnsToDictionary:]
  void addCommonColumnsToDictionary(Dictionary& record, std::string_view destination);

 private:
  void addVersions(Dictionary& record);
  void addPosition(Dictionary& record);

  Platform& platform_;
  KesuMetrics& metrics_;
  const AppInstance& instance_;
  const Location& location_;
};

/// Sets a text that may be missing; a missing one removes the key.
void setOrRemove(Dictionary& record, std::string_view key, const std::optional<std::string>& text);

}  // namespace kesu
