#include "lifecycle/RecordSender.h"

#include <string>
#include <string_view>
#include <utility>

#include "lifecycle/DeviceState.h"
#include "records/DefaultsKeys.h"
#include "records/Destinations.h"
#include "records/RecordKeys.h"

namespace kesu {
namespace {

constexpr std::string_view kTraitsSaveTime = "t-secondsSince1970";
static_assert(kTraitsSaveTime.starts_with(k_TableTraits) && kTraitsSaveTime.ends_with(kSaveTimeSuffix));

// Of records that were posted before the initialisation: they have no destination.
constexpr std::string_view kUnknownSaveTime = "UnknownDestination-secondsSince1970";
static_assert(kUnknownSaveTime.starts_with(kUnknownDestination) && kUnknownSaveTime.ends_with(kSaveTimeSuffix));

}  // namespace

void RecordSender::start() {
  outbox_.startDelivery([this](Outbox::Delivery delivery) { deliver(std::move(delivery)); });
}

PendingRecord RecordSender::frame(RecordKind kind, std::string_view destination, char detail) const {
  PendingRecord record;
  record.kind = kind;
  record.destination = destination.front();
  record.detail = detail;
  record.hasContext = instance_.isLoaded();
  return record;
}

// The time at which traits were posted last, which decides whether the next launch posts them.
DefaultsChange RecordSender::traitsSaved() const {
  return DefaultsChange::set(instance_.isLoaded() ? kTraitsSaveTime : kUnknownSaveTime, platform_.clock.now());
}

void RecordSender::postToTable(const Dictionary& attributes, std::string_view destination,
                               const std::optional<Replacement>& replacement, std::span<const DefaultsChange> changes) {
  outbox_.add(frame(RecordKind::Table, destination), attributes, replacement, changes);
}

void RecordSender::postAppTraits(const Dictionary& record, TraitType type) {
  const DefaultsChange saved = traitsSaved();
  outbox_.add(frame(RecordKind::Traits, k_TableTraits, static_cast<char>(type)), record, std::nullopt, {&saved, 1});
}

void RecordSender::postBehindColumns(const Dictionary& entries, std::string_view destination) {
  const DefaultsChange saved = traitsSaved();
  const bool isTraits = destination == k_TableTraits;
  outbox_.add(frame(RecordKind::ColumnsInFront, destination), entries, std::nullopt, {&saved, isTraits ? 1U : 0U});
}

void RecordSender::postStateChange(char state,
                                   const std::function<void(Dictionary& entries, DefaultsChanges& changes)>& build) {
  outbox_.addBuilt(frame(RecordKind::State, k_TableStates, state), build);
}

void RecordSender::saveTraits(TraitType type) {
  Dictionary traits;
  addTraits(traits, type);
  DefaultsChanges changes = {traitsSaved()};
  if (type == TraitType::FirstLaunch) {  // The first report to which later periods are compared.
    variants_.calculateVariantsForDMWQ(traits, changes);
  }
  outbox_.add(frame(RecordKind::ColumnsInFront, k_TableTraits), traits, std::nullopt, changes);
}

void RecordSender::addTraits(Dictionary& record, TraitType type) {
  addTraitData(record, type, instance_.identity().id2, platform_, metrics_);
}

void RecordSender::postActivation(const Dictionary& flags, DefaultsChanges changes) {
  if (!flags.empty()) {
    changes.push_back(traitsSaved());
    // Behind the flags: their order in the record is part of the wire contract.
    outbox_.add(frame(RecordKind::ColumnsBehind, k_TableTraits), flags, std::nullopt, changes);
  } else if (!changes.empty()) {
    outbox_.change(changes);
  }
}

void RecordSender::deliver(Outbox::Delivery delivery) {
  if (delivery.context == nullptr) {
    saveTime(delivery.record);
  }
  post_.send(completed(delivery), delivery.ticket);
}

Dictionary RecordSender::completed(Outbox::Delivery& delivery) {
  const PendingRecord& pending = delivery.record;
  const auto addColumns = [&](Dictionary& record) {
    columns_.addCommonColumnsToDictionary(record, pending, delivery.context);
  };
  const auto behindColumns = [&] {
    Dictionary record;
    addColumns(record);
    for (const auto& [key, value] : pending.entries) {
      record.set(key, value);
    }
    return record;
  };
  Dictionary record;
  switch (pending.kind) {
    case RecordKind::Complete:
      return std::move(delivery.record.entries);
    case RecordKind::Table:
      record = std::move(delivery.record.entries);
      addColumns(record);
      record.set(k_Reachability, metrics_.granularReachability());
      return record;
    case RecordKind::ColumnsBehind:
      record = std::move(delivery.record.entries);
      addColumns(record);
      return record;
    case RecordKind::ColumnsInFront:
      return behindColumns();
    case RecordKind::Traits:
      record = std::move(delivery.record.entries);
      addColumns(record);
      addTraits(record, static_cast<TraitType>(pending.detail));
      return record;
    case RecordKind::State:
      record = behindColumns();
      addDeviceState(record, pending.detail, metrics_);
      return record;
  }
  return record;
}

// In memory: the outbox writes it with what it hands over next. That of traits, on which the next launch depends, is
// logged with the record.
void RecordSender::saveTime(const PendingRecord& record) {
  if (record.kind == RecordKind::Table) {
    const std::string key = std::string(1, record.destination).append(kSaveTimeSuffix);
    platform_.defaults.set(record.hasContext ? std::string_view(key) : kUnknownSaveTime, record.moment);
  }
}

}  // namespace kesu
