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

// Handing every time to the system would be the larger half of what an event costs, and hosts that post meanwhile would
// wait for it.
void RecordSender::postAndSaveSoon(Dictionary record) {
  const std::string key = saveTimeKey(record);
  post_.post(std::move(record));
  const bool isFirst = saveTimes_.empty();
  saveTimes_[key] = platform_.clock.now();
  if (isFirst) {
    platform_.background.post([this] { saveTimesNow(); });  // Runs at once while the process ends.
  }
}

void RecordSender::saveTimesNow() {
  for (const auto& [key, time] : saveTimes_) {
    platform_.defaults.set(key, time);
  }
  saveTimes_.clear();
  platform_.defaults.synchronize();
}

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
  if (type == TraitType::FirstLaunch) {
    variants_.calculateVariantsForDMWQ(record);
  }
}

void RecordSender::postActivation(Dictionary flags) {
  if (flags.empty()) {
    return;
  }
  addCommonColumns(flags, k_TableTraits);
  postAndSave(std::move(flags));
}

}  // namespace kesu
