#include "lifecycle/ScreenFlow.h"

#include <utility>

#include "foundation/NumberText.h"
#include "foundation/Text.h"
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

std::string keyOf(const ScreenKey& screen) {
  return screen.prefix + screen.suffix;
}

// Kept: cuts long visits in the flow, not in the usage totals.
std::string screenEntry(std::string_view name, double seconds) {
  return flowEntry(std::string(), name, fixed(seconds > kLongestVisitSeconds ? kSecondsOfALongerVisit : seconds, 1));
}

}  // namespace

bool endsSession(char state) {
  return isAnyOf(state, "bt");
}

void ScreenFlow::screenFlowHandler(char state, std::span<const ScreenKey> screens, Dictionary& record,
                                   DefaultsChanges& changes) {
  const double now = clock_.now();
  if (isAnyOf(state, "lrt")) {
    reportUnsent(state, record, changes);
  }
  visit_.clear();
  for (const ScreenKey& screen : screens) {
    if (isAnyOf(state, "ar")) {
      begins_[keyOf(screen)] = now;
    } else if (isAnyOf(state, "bdt")) {
      visit_ += endScreen(screen, now);
    }
  }
  if (state == kStateAppeared) {  // The time of death for the next run, should the process die.
    changes.push_back(DefaultsChange::set(k_CrashedOrForcedQuitTimestamp, milliseconds(now)));
  }
  if (endsSession(state)) {
    flush(record, changes);
    return;
  }
  if (!visit_.empty()) {
    grow(changes);
  }
  if (!visit_.empty() || (isFlowOurs_ && isAnyOf(state, "lr"))) {
    rememberVersions(changes);
  }
}

// Kept: what this session itself has stored is reported as well. It stays, as the end of the session must send it.
void ScreenFlow::reportUnsent(char state, Dictionary& record, DefaultsChanges& changes) {
  begins_.clear();
  std::string unsent = defaults_.text(k_UnsentScreenFlowData);
  if (unsent.empty()) {
    return;
  }
  record.set(k_SceneFlow, std::move(unsent));
  if (state == kStateLaunch) {
    reportInterruptedRun(record, changes);
  }
  if (!isFlowOurs_) {
    changes.push_back(DefaultsChange::set(k_UnsentScreenFlowData, ""));
  }
}

// Here and not when the record is sent: what the next run stores must neither be mixed with it nor be wiped by it, and
// a record that is sent again keeps what it reported.
void ScreenFlow::reportInterruptedRun(Dictionary& record, DefaultsChanges& changes) {
  std::string lastAppearance = defaults_.text(k_CrashedOrForcedQuitTimestamp);
  if (lastAppearance.empty()) {
    return;
  }
  record.set(k_CrashedOrForcedQuitTimestamp, std::move(lastAppearance));
  changes.push_back(DefaultsChange::set(k_CrashedOrForcedQuitTimestamp, ""));
  const std::pair<std::string_view, std::string_view> versions[] = {
      {kFlowOsVersionDefault, k_OsVersion},
      {kFlowShortVersionDefault, k_CFBundleShortVersionString},
      {kFlowBundleVersionDefault, k_CFBundleVersion}};
  for (const auto& [source, column] : versions) {
    // Kept: an empty text counts as a version and is copied, too.
    if (auto version = defaults_.get(source)) {
      record.set(column, std::move(*version));
      changes.push_back(DefaultsChange::set(source, ""));
    }
  }
}

// Returns the entry of the visit that ends; "" when there is none.
std::string ScreenFlow::endScreen(const ScreenKey& screen, double now) {
  const auto found = begins_.find(keyOf(screen));
  if (found == begins_.end()) {
    return {};
  }
  const double seconds = now - found->second;
  usage_.addForegroundSeconds(seconds);
  begins_.erase(found);
  // Bytes that are not UTF-8 would make the whole flow, and with it the record that carries it, unsendable.
  return isValidUtf8(screen.prefix) ? screenEntry(screen.prefix, seconds) : std::string();
}

// Appending costs the same however long the session has grown.
void ScreenFlow::grow(DefaultsChanges& changes) {
  changes.push_back(std::exchange(isFlowOurs_, true) ? DefaultsChange::append(k_UnsentScreenFlowData, visit_)
                                                     : DefaultsChange::set(k_UnsentScreenFlowData, visit_));
}

void ScreenFlow::flush(Dictionary& record, DefaultsChanges& changes) {
  std::string flow = std::exchange(isFlowOurs_, false) ? defaults_.text(k_UnsentScreenFlowData) : std::string();
  flow += visit_;
  if (!flow.empty()) {
    record.set(k_ScreenFlow, std::move(flow));
  }
  changes.push_back(DefaultsChange::set(k_UnsentScreenFlowData, ""));
  changes.push_back(DefaultsChange::set(k_CrashedOrForcedQuitTimestamp, ""));
  begins_.clear();
  moveFlow(k_EventFlow, record, changes);
  moveFlow(k_SceneFlow, record, changes);
}

void ScreenFlow::moveFlow(std::string_view key, Dictionary& record, DefaultsChanges& changes) {
  std::string flow = defaults_.text(key);
  if (!flow.empty()) {
    record.set(key, std::move(flow));
    changes.push_back(DefaultsChange::remove(key));
  }
}

void ScreenFlow::rememberVersions(DefaultsChanges& changes) {
  if (bundle_.hasInfo()) {  // Versions that are unknown for the moment must not mix with known ones.
    rememberIfNew(kFlowBundleVersionDefault, bundle_.infoText("CFBundleVersion"), changes);
    rememberIfNew(kFlowShortVersionDefault, bundle_.infoText("CFBundleShortVersionString"), changes);
    rememberIfNew(kFlowOsVersionDefault, metrics_.systemVersion(), changes);
  }
}

void ScreenFlow::rememberIfNew(std::string_view key, const std::optional<std::string>& text, DefaultsChanges& changes) {
  if (text && defaults_.text(key) != *text) {
    changes.push_back(DefaultsChange::set(key, *text));
  }
}

}  // namespace kesu
