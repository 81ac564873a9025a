#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Platform.h>

#include <map>
#include <string>
#include <string_view>

#include "delivery/KesuPost.h"
#include "device/KesuMetrics.h"
#include "lifecycle/AppInstance.h"
#include "lifecycle/CalendarVariants.h"
#include "lifecycle/CommonColumns.h"
#include "lifecycle/Location.h"
#include "lifecycle/TraitData.h"

namespace kesu {

/// Completes records and passes them to delivery. Any thread; the asynchronous operations keep the order of their
/// calls.
class RecordSender {
 public:
  RecordSender(Platform& platform, KesuMetrics& metrics, KesuPost& post, const AppInstance& instance,
               const Location& location, CalendarVariants& variants)
      : platform_(platform),
        metrics_(metrics),
        post_(post),
        instance_(instance),
        columns_(platform, metrics, instance, location),
        variants_(variants) {}

  /// Adds the common columns synchronously.
  void addCommonColumns(Dictionary& record, std::string_view destination) {
    columns_.addCommonColumnsToDictionary(record, destination);
  }

  /// Posts a record as it is, synchronously.
  void post(Dictionary record) { post_.post(std::move(record)); }

  /// Posts a record as it is, synchronously, and stores the time under its destination.
  void postAndSave(Dictionary record);

  /// Completes the record for a table, adds the network class and posts it, on the background queue. The time is stored
  /// under its destination behind what is queued by then, once per burst of records.
  void postToTable(Dictionary record, std::string_view destination);

  /// Completes the record with the columns and the trait block of `type` and posts it, on the background queue.
  void postAppTraits(Dictionary record, TraitType type);

  /// Posts the trait block of `type` synchronously.
  void saveTraits(TraitType type);

  /// Adds the trait block of `type` synchronously.
  void addTraits(Dictionary& record, TraitType type);

  /// Posts activation flags as traits, synchronously. Does nothing without any.
  void postActivation(Dictionary flags);

 private:
  void postAndSaveSoon(Dictionary record);
  void saveTimesNow();

  Platform& platform_;
  KesuMetrics& metrics_;
  KesuPost& post_;
  const AppInstance& instance_;
  CommonColumns columns_;
  CalendarVariants& variants_;
  std::map<std::string, double> saveTimes_;  // Not yet in the user defaults. Background queue only.
};

}  // namespace kesu
