#include "lifecycle/RecordSender.h"

#include <string>
#include <utility>

#include "records/DefaultsKeys.h"
#include "records/Destinations.h"
#include "records/RecordKeys.h"

namespace kesu {

void RecordSender::postAndSave(Dictionary record) {
  const std::string* named = record.findText(k_destinationKeyInDictionary);
  const std::string saveTimeKey =
      (named != nullptr ? *named : std::string(kUnknownDestination)) + std::string(kSaveTimeSuffix);
  post_.post(std::move(record));
  platform_.defaults.set(saveTimeKey, platform_.clock.now());
  platform_.defaults.synchronize();
}

void RecordSender::postToTable(Dictionary record, std::string_view destination) {
  platform_.background.post([this, record = std::move(record), destination]() mutable {
    addCommonColumns(record, destination);
    record.set(k_Reachability, metrics_.granularReachability());
    postAndSave(std::move(record));
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
