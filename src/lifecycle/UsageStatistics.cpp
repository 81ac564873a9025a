#include "lifecycle/UsageStatistics.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "records/DefaultsKeys.h"

namespace kesu {
namespace {

constexpr int kWindows[] = {3, 5, 7};  // Days, today included.
constexpr int kOldestDayKept = 6;      // The longest window needs no day before it.

/// A threshold in seconds and the minutes by which its flag is named.
struct Threshold {
  int minutes;
  std::int64_t seconds;
};

constexpr Threshold kWindowThresholds[] = {{5, 300}, {10, 600}, {15, 900}, {30, 1800}};
constexpr Threshold kTotalThresholds[] = {{15, 900}, {30, 1800}, {60, 3600}};
constexpr int kLastWindowThreshold = 30;  // With it a window has nothing more to report.

std::string windowFlag(int minutes, int days) {
  return "~a:u" + std::to_string(minutes) + "mo" + std::to_string(days) + "D";
}

std::string totalFlag(int minutes) {
  return "~a:u" + std::to_string(minutes) + "m";
}

std::string exceedsFlag(int days) {
  return "appExceeds" + std::to_string(days) + "dayUsage";
}

std::int64_t wholeSeconds(double seconds) {
  constexpr double kLargest = 9.0e18;  // Just inside 64 bits, and exact as a double.
  return std::isnan(seconds) ? 0 : static_cast<std::int64_t>(std::clamp(seconds, -kLargest, kLargest));
}

Dictionary usageByDay(UserDefaults& defaults) {
  const auto stored = defaults.get(kUsageByDayDefault);
  const Dictionary* days = stored ? stored->dictionary() : nullptr;
  return days != nullptr ? *days : Dictionary();
}

std::int64_t secondsOf(const Dictionary& usage, const std::string& day) {
  const Value* seconds = usage.find(day);
  return seconds != nullptr ? seconds->integerValue() : 0;
}

}  // namespace

void UsageStatistics::addForegroundSeconds(double seconds) {
  secondsPartFromScreenFlow_.fetch_add(seconds);
}

bool UsageStatistics::raiseOnce(Dictionary& traits, const std::string& flag) {
  if (defaults_.boolean(flag)) {
    return false;
  }
  traits.set(flag, "1");
  defaults_.set(flag, true);
  return true;
}

void UsageStatistics::fillInTraitsForAggregateAndActivations(Dictionary& traits) {
  const MutexLock lock(mutex_);
  const double now = clock_.now();
  const double pending = secondsPartFromScreenFlow_.load();
  const bool allExceeded =
      std::ranges::all_of(kWindows, [this](int days) { return defaults_.boolean(exceedsFlag(days)); });
  if (!allExceeded) {
    const std::string today = calendar_.dayStringFromToday(0, now);
    for (const int days : kWindows) {
      appUsageStat(today, traits, days, now, pending);
    }
    clearPastWeeksUsageFromToday(now);
  }
  const bool allTotals = std::ranges::all_of(
      kTotalThresholds, [this](const Threshold& total) { return defaults_.boolean(totalFlag(total.minutes)); });
  if (allTotals) {
    return;
  }
  const double total = defaults_.real(kAggregateSecondsDefault) + pending;
  for (const Threshold& threshold : kTotalThresholds) {
    if (total >= static_cast<double>(threshold.seconds)) {
      raiseOnce(traits, totalFlag(threshold.minutes));
    }
  }
  defaults_.set(kAggregateSecondsDefault, wholeSeconds(total));  // Kept: the fraction is lost each time.
  defaults_.synchronize();
  secondsPartFromScreenFlow_.fetch_sub(pending);
}

void UsageStatistics::appUsageStat(const std::string& today, Dictionary& traits, int days, double now, double pending) {
  const bool allSent = std::ranges::all_of(kWindowThresholds, [this, days](const Threshold& threshold) {
    return defaults_.boolean(windowFlag(threshold.minutes, days));
  });
  if (allSent) {
    return;
  }
  Dictionary usage = usageByDay(defaults_);
  // Kept: each of the three windows adds the pending seconds to today's entry, which may so count them threefold.
  std::int64_t sum = wholeSeconds(static_cast<double>(secondsOf(usage, today)) + pending);
  usage.set(today, sum);
  for (int day = days - 1; day >= 1; --day) {
    sum += secondsOf(usage, calendar_.dayStringFromToday(day, now));
  }
  for (const Threshold& threshold : kWindowThresholds) {
    const bool raised = sum >= threshold.seconds && raiseOnce(traits, windowFlag(threshold.minutes, days));
    if (raised && threshold.minutes == kLastWindowThreshold) {
      defaults_.set(exceedsFlag(days), true);
    }
  }
  defaults_.set(kUsageByDayDefault, std::move(usage));
  defaults_.synchronize();
}

void UsageStatistics::clearPastWeeksUsageFromToday(double now) {
  Dictionary usage = usageByDay(defaults_);
  const std::string cut = calendar_.dayStringFromToday(kOldestDayKept, now);
  // Kept: without an entry for the day six days ago nothing is removed.
  if (!usage.contains(cut)) {
    return;
  }
  const std::int64_t oldest = Value(cut).integerValue();
  usage.removeIf([oldest](const Dictionary::Entry& day) { return Value(day.key).integerValue() < oldest; });
  defaults_.set(kUsageByDayDefault, std::move(usage));
  defaults_.synchronize();
}

}  // namespace kesu
