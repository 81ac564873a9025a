#include "lifecycle/ScreenFlow.h"

#include <utility>

#include "foundation/NumberText.h"
#include "records/DefaultsKeys.h"
#include "records/RecordKeys.h"
#include "records/StateCodes.h"

namespace kesu {
namespace {

// A screen visible for longer than a film was most likely left on: it counts as five minutes.
constexpr double kLongestVisitSeconds = 7200.0;
constexpr double kSecondsOfALongerVisit = 300.0;

bool isAnyOf(char state, std::string_view states) {
  return states.find(state) != std::string_view::npos;
}

void setIfKnown(UserDefaults& defaults, std::string_view key, const std::optional<std::string>& text) {
  if (text) {
    defaults.set(key, *text);
  }
}

// Kept: cuts long visits in the flow, not in the usage totals.
std::string screenEntry(std::string_view name, double seconds) {
  return flowEntry(name, fixed(seconds > kLongestVisitSeconds ? kSecondsOfALongerVisit : seconds, 1));
}

}  // namespace

std::string flowEntry(std::string_view name, std::string_view seconds) {
  std::string entry = "$$";
  entry.append(name).append("~~").append(seconds);
  return entry;
}

bool endsSession(char state) {
  return isAnyOf(state, "bt");
}

void ScreenFlow::screenFlowHandler(char state, const ScreenKey& screen, Dictionary& record) {
  const MutexLock lock(mutex_);
  const double now = clock_.now();
  if (isAnyOf(state, "lrt")) {
    reportUnsent(state, record);
  }
  const std::string key = screen.prefix + screen.suffix;
  if (isAnyOf(state, "ar")) {
    beginScreen(key, state, now);
  }
  const bool hasGrown = isAnyOf(state, "bdt") && endScreen(key, screen.prefix, now);
  if (endsSession(state)) {
    flush(record);
  } else if (hasGrown || (isFlowOurs_ && isAnyOf(state, "lr"))) {
    rememberVersions();
    defaults_.synchronize();
  }
}

// Kept: what this session itself has stored is reported as well. It stays, as the end of the session must send it.
void ScreenFlow::reportUnsent(char state, Dictionary& record) {
  screens_.clear();
  std::string unsent = defaults_.text(k_UnsentScreenFlowData);
  if (unsent.empty()) {
    return;
  }
  record.set(k_SceneFlow, std::move(unsent));
  std::string lastAppearance = defaults_.text(k_CrashedOrForcedQuitTimestamp);
  if (state == kStateLaunch && !lastAppearance.empty()) {
    record.set(k_CrashedOrForcedQuitTimestamp, std::move(lastAppearance));
  }
  if (!isFlowOurs_) {
    defaults_.set(k_UnsentScreenFlowData, "");
    defaults_.synchronize();
  }
}

void ScreenFlow::beginScreen(const std::string& key, char state, double now) {
  screens_[key] = now;
  if (state == kStateAppeared) {  // The time of death for the next run, should the process die.
    defaults_.set(k_CrashedOrForcedQuitTimestamp, milliseconds(now));
    defaults_.synchronize();
  }
}

bool ScreenFlow::endScreen(const std::string& key, const std::string& name, double now) {
  const auto found = screens_.find(key);
  if (found == screens_.end()) {
    return false;
  }
  const double seconds = now - found->second;
  usage_.addForegroundSeconds(seconds);
  screens_.erase(found);
  if (!std::exchange(isFlowOurs_, true)) {
    defaults_.set(k_UnsentScreenFlowData, "");
  }
  // Appending costs the same however long the session has grown.
  defaults_.appendString(k_UnsentScreenFlowData, screenEntry(name, seconds));
  return true;
}

void ScreenFlow::flush(Dictionary& record) {
  auto flow = defaults_.takeString(k_UnsentScreenFlowData);
  if (std::exchange(isFlowOurs_, false) && flow) {
    record.set(k_ScreenFlow, std::move(*flow));
  }
  defaults_.set(k_UnsentScreenFlowData, "");
  defaults_.set(k_CrashedOrForcedQuitTimestamp, "");
  defaults_.synchronize();
  screens_.clear();
  moveFlow(k_EventFlow, record);
  moveFlow(k_SceneFlow, record);
  defaults_.synchronize();
}

void ScreenFlow::moveFlow(std::string_view key, Dictionary& record) {
  auto flow = defaults_.takeString(key);
  if (flow && !flow->empty()) {
    record.set(key, std::move(*flow));
  }
}

void ScreenFlow::rememberVersions() {
  if (bundle_.hasInfo()) {  // Versions that are unknown for the moment must not mix with known ones.
    setIfKnown(defaults_, kFlowBundleVersionDefault, bundle_.infoText("CFBundleVersion"));
    setIfKnown(defaults_, kFlowShortVersionDefault, bundle_.infoText("CFBundleShortVersionString"));
    setIfKnown(defaults_, kFlowOsVersionDefault, metrics_.systemVersion());
  }
}

}  // namespace kesu
