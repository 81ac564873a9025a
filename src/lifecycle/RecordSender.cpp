#include "lifecycle/RecordSender.h"

#include <string>
#include <utility>

#include "records/DefaultsKeys.h"
#include "records/Destinations.h"
#include "records/RecordKeys.h"

namespace kesu {

namespace {

std::string saveTimeKey(const Dictionary& record) {
  const std::string* named = record.findText(k_destinationKeyInDictionary);
  return (named != nullptr ? *named : std::string(kUnknownDestination)) + std::string(kSaveTimeSuffix);
}

}  // namespace

void RecordSender::postAndSave(Dictionary record) {
  const std::string key = saveTimeKey(record);
  post_.post(std::move(record));
  platform_.defaults.set(key, platform_.clock.now());
  platform_.defaults.synchronize();
}

// Synchronizing the user defaults for each record would be the larger half of what an event costs, and hosts that post
// meanwhile would wait for their lock.
void RecordSender::postAndSaveSoon(Dictionary record) {
  const std::string key = saveTimeKey(record);
  post_.post(std::move(record));
  const bool isFirst = saveTimes_.empty();
  saveTimes_[key] = platform_.clock.now();
  if (isFirst) {
    platform_.background.post([this] { saveTimesNow(); });  // Called synchronously while the process ends.
  }
}

void RecordSender::saveTimesNow() {
  for (const auto& [key, time] : saveTimes_) {
    platform_.defaults.set(key, time);
  }
  saveTimes_.clear();
  platform_.defaults.synchronize();
}

// The record is completed on the worker: the caller pays for a copy only. "ace" is therefore the time of completion.
void RecordSender::postToTable(Dictionary record, std::string_view destination) {
  platform_.background.post([this, record = std::move(record), destination]() mutable {
    addCommonColumns(record, destination);
    record.set(k_Reachability, metrics_.granularReachability());
    postAndSaveSoon(std::move(record));
  });
}

void RecordSender::postAppTraits(Dictionary record, TraitType type) {
  platform_.background.post([this, record = std::move(record), type]() mutable {
    addCommonColumns(record, k_TableTraits);
    addTraits(record, type);
    postAndSave(std::move(record));
  });
}

void RecordSender::saveTraits(TraitType type) {
  Dictionary record;
  addCommonColumns(record, k_TableTraits);
  addTraits(record, type);
  postAndSave(std::move(record));
}

void RecordSender::addTraits(Dictionary& record, TraitType type) {
  addTraitData(record, type, instance_.identity().id2, platform_, metrics_);
  if (type == TraitType::FirstLaunch) {  // The first report to which later periods are compared.
    variants_.calculateVariantsForDMWQ(record);
  }
}

void RecordSender::postActivation(Dictionary flags) {
  if (flags.empty()) {
    return;
  }
  // Behind the flags: their order in the record is part of the wire contract.
  addCommonColumns(flags, k_TableTraits);
  postAndSave(std::move(flags));
}

}  // namespace kesu
