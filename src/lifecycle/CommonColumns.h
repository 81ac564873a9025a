#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Platform.h>

#include <optional>
#include <string>
#include <string_view>

#include "device/KesuMetrics.h"
#include "lifecycle/AppInstance.h"
#include "lifecycle/Location.h"
#include "outbox/PendingRecord.h"

namespace kesu {

/// Adds the context that every record carries. Any thread.
class CommonColumns {
 public:
  CommonColumns(Platform& platform, KesuMetrics& metrics, const AppInstance& instance, const Location& location)
      : platform_(platform), metrics_(metrics), instance_(instance), location_(location) {}

  /// Sets the columns of `pending` in `record`, replacing entries of the same names. A record that was taken before the
  /// library had its key gets none. `context` is what the process said that took it; null: this process.
  /// [addCommonColumnsToDictionary:]
  void addCommonColumnsToDictionary(Dictionary& record, const PendingRecord& pending, const Dictionary* context);

  /// Returns what a later process needs to complete the records of this one: the columns that do not change with each
  /// record.
  Dictionary context();

 private:
  /// Where a record was taken; its texts are moved into the record.
  struct Origin {
    std::optional<std::string> appKey;
    std::optional<std::string> id;
    std::optional<std::string> id2;
    std::optional<std::string> bundleVersion;
    std::optional<std::string> shortVersion;
    std::optional<std::string> systemVersion;
  };

  Origin ownOrigin();
  static Origin originIn(const Dictionary& context);
  void addPosition(Dictionary& record);

  Platform& platform_;
  KesuMetrics& metrics_;
  const AppInstance& instance_;
  const Location& location_;
};

/// Sets a text that may be missing; a missing one removes the key.
void setOrRemove(Dictionary& record, std::string_view key, std::optional<std::string> text);

}  // namespace kesu
