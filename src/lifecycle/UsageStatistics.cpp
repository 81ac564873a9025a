#include "lifecycle/UsageStatistics.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "records/DefaultsKeys.h"

namespace kesu {
namespace {

constexpr int kOldestDayKept = 6;  // The longest window needs no day before it.

struct Threshold {
  std::int64_t seconds;
  std::string_view flag;
};

struct Window {
  int days;  // Today included.
  Threshold thresholds[4];
  std::string_view exceeded;  // Set with the last flag.
};

constexpr Window kWindows[] = {
    {3, {{300, "~a:u5mo3D"}, {600, "~a:u10mo3D"}, {900, "~a:u15mo3D"}, {1800, "~a:u30mo3D"}}, "appExceeds3dayUsage"},
    {5, {{300, "~a:u5mo5D"}, {600, "~a:u10mo5D"}, {900, "~a:u15mo5D"}, {1800, "~a:u30mo5D"}}, "appExceeds5dayUsage"},
    {7, {{300, "~a:u5mo7D"}, {600, "~a:u10mo7D"}, {900, "~a:u15mo7D"}, {1800, "~a:u30mo7D"}}, "appExceeds7dayUsage"}};

constexpr Threshold kTotalThresholds[] = {{900, "~a:u15m"}, {1800, "~a:u30m"}, {3600, "~a:u60m"}};

std::int64_t wholeSeconds(double seconds) {
  constexpr double kLargest = 9.0e18;  // Just inside 64 bits, and exact as a double.
  return std::isnan(seconds) ? 0 : static_cast<std::int64_t>(std::clamp(seconds, -kLargest, kLargest));
}

std::int64_t secondsOf(const Dictionary& usage, const std::string& day) {
  const Value* seconds = usage.find(day);
  return seconds != nullptr ? seconds->integerValue() : 0;
}

/// One report of the seconds that are pending.
class UsageReport {
 public:
  UsageReport(UserDefaults& defaults, WeekCalendar& calendar, double now, double pending, Dictionary& traits,
              DefaultsChanges& changes)
      : defaults_(defaults), calendar_(calendar), now_(now), pending_(pending), traits_(traits), changes_(changes) {}

  void addToDays();

  /// Returns false when there is nothing left to report, and the seconds are not counted.
  bool addToTotal();

 private:
  bool isSent(std::string_view flag) { return defaults_.boolean(flag); }
  void raiseOnce(std::string_view flag);
  void appUsageStat(const Window& window, Dictionary& usage);
  void clearPastWeeksUsageFromToday(Dictionary& usage);

  UserDefaults& defaults_;
  WeekCalendar& calendar_;
  const double now_;
  const double pending_;
  Dictionary& traits_;
  DefaultsChanges& changes_;
};

void UsageReport::addToDays() {
  if (std::ranges::all_of(kWindows, [this](const Window& window) { return isSent(window.exceeded); })) {
    return;
  }
  const auto stored = defaults_.get(kUsageByDayDefault);
  const Dictionary* days = stored ? stored->dictionary() : nullptr;
  Dictionary usage = days != nullptr ? *days : Dictionary();
  for (const Window& window : kWindows) {
    appUsageStat(window, usage);
  }
  clearPastWeeksUsageFromToday(usage);
  if (!usage.empty()) {
    changes_.push_back(DefaultsChange::set(kUsageByDayDefault, std::move(usage)));
  }
}

void UsageReport::appUsageStat(const Window& window, Dictionary& usage) {
  if (std::ranges::all_of(window.thresholds, [this](const Threshold& each) { return isSent(each.flag); })) {
    return;
  }
  const std::string today = calendar_.dayStringFromToday(0, now_);
  // Kept: each of the three windows adds the pending seconds to today's entry, which may so count them threefold.
  std::int64_t sum = wholeSeconds(static_cast<double>(secondsOf(usage, today)) + pending_);
  usage.set(today, sum);
  for (int day = window.days - 1; day >= 1; --day) {
    sum += secondsOf(usage, calendar_.dayStringFromToday(day, now_));
  }
  for (const Threshold& threshold : window.thresholds) {
    if (sum >= threshold.seconds) {
      raiseOnce(threshold.flag);
    }
  }
  const Threshold& last = *std::rbegin(window.thresholds);
  if (sum >= last.seconds && !isSent(last.flag)) {
    changes_.push_back(DefaultsChange::set(window.exceeded, true));
  }
}

void UsageReport::raiseOnce(std::string_view flag) {
  if (!isSent(flag)) {
    traits_.set(flag, "1");
    changes_.push_back(DefaultsChange::set(flag, true));
  }
}

void UsageReport::clearPastWeeksUsageFromToday(Dictionary& usage) {
  const std::string cut = calendar_.dayStringFromToday(kOldestDayKept, now_);
  // Kept: without an entry for the day six days ago nothing is removed.
  if (usage.contains(cut)) {
    const std::int64_t oldest = Value(cut).integerValue();
    usage.removeIf([oldest](const Dictionary::Entry& day) { return Value(day.key).integerValue() < oldest; });
  }
}

bool UsageReport::addToTotal() {
  if (std::ranges::all_of(kTotalThresholds, [this](const Threshold& each) { return isSent(each.flag); })) {
    return false;
  }
  const double total = defaults_.real(kAggregateSecondsDefault) + pending_;
  for (const Threshold& threshold : kTotalThresholds) {
    if (total >= static_cast<double>(threshold.seconds)) {
      raiseOnce(threshold.flag);
    }
  }
  // Kept: the fraction is lost each time.
  changes_.push_back(DefaultsChange::set(kAggregateSecondsDefault, wholeSeconds(total)));
  return true;
}

}  // namespace

void UsageStatistics::addForegroundSeconds(double seconds) {
  secondsPartFromScreenFlow_.fetch_add(seconds);
}

void UsageStatistics::fillInTraitsForAggregateAndActivations(Dictionary& traits, DefaultsChanges& changes) {
  const double pending = secondsPartFromScreenFlow_.load();
  UsageReport report(defaults_, calendar_, clock_.now(), pending, traits, changes);
  report.addToDays();
  if (report.addToTotal()) {
    secondsPartFromScreenFlow_.fetch_sub(pending);
  }
}

}  // namespace kesu
