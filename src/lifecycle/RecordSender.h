#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Platform.h>

#include <functional>
#include <span>
#include <string_view>

#include "delivery/KesuPost.h"
#include "device/KesuMetrics.h"
#include "lifecycle/AppInstance.h"
#include "lifecycle/CalendarVariants.h"
#include "lifecycle/CommonColumns.h"
#include "lifecycle/Location.h"
#include "lifecycle/TraitData.h"
#include "outbox/Outbox.h"

namespace kesu {

/// Takes the records of the life cycle and of the events into the outbox, and completes them when it hands them out.
/// Any thread; what is taken leaves in the order of the calls.
class RecordSender {
 public:
  RecordSender(Platform& platform, KesuMetrics& metrics, Outbox& outbox, KesuPost& post, const AppInstance& instance,
               const Location& location, CalendarVariants& variants)
      : platform_(platform),
        metrics_(metrics),
        outbox_(outbox),
        post_(post),
        instance_(instance),
        columns_(platform, metrics, instance, location),
        variants_(variants) {}

  /// Starts completing and sending.
  void start();

  /// Tells the outbox what a later process needs to complete the records of this one.
  void noteContext() { outbox_.setContext(columns_.context()); }

  /// Take a record for a table: its attributes, with one replaced, and changes of the user defaults in the same step.
  void postToTable(const Dictionary& attributes, std::string_view destination,
                   const std::optional<Replacement>& replacement = std::nullopt,
                   std::span<const DefaultsChange> changes = {});

  /// Takes a record of the table of traits, to which the trait block of `type` is added when it is sent.
  void postAppTraits(const Dictionary& record, TraitType type);

  /// Takes a record of a table whose entries stand behind the common columns.
  void postBehindColumns(const Dictionary& entries, std::string_view destination);

  /// Takes a state change; see Outbox::addBuilt().
  void postStateChange(char state, const std::function<void(Dictionary& entries, DefaultsChanges& changes)>& build);

  /// Takes the trait block of `type`, as it is now.
  void saveTraits(TraitType type);

  /// Adds the trait block of `type`, without the calendar variants.
  void addTraits(Dictionary& record, TraitType type);

  /// Takes activation flags as traits, and makes the changes in the same step; without flags only these.
  void postActivation(const Dictionary& flags, DefaultsChanges changes);

 private:
  PendingRecord frame(RecordKind kind, std::string_view destination, char detail = '\0') const;
  DefaultsChange traitsSaved() const;
  void deliver(Outbox::Delivery delivery);
  Dictionary completed(Outbox::Delivery& delivery);
  void saveTime(const PendingRecord& record);

  Platform& platform_;
  KesuMetrics& metrics_;
  Outbox& outbox_;
  KesuPost& post_;
  const AppInstance& instance_;
  CommonColumns columns_;
  CalendarVariants& variants_;
};

}  // namespace kesu
