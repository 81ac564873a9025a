#include "lifecycle/Activations.h"

#include <algorithm>
#include <set>
#include <string>

#include "records/DefaultsKeys.h"
#include "records/StateCodes.h"

namespace kesu {
namespace {

constexpr std::size_t kMostDaysKept = 7;     // The largest milestone of days, "~a:7UD".
constexpr int kLastDaysLookedAt = 7;         // "L7": today and the six days before.
constexpr std::int64_t kLastMilestone = 10;  // The counter stops here, so that it is not written for ever.

bool counts(char state) {
  return state == kStateLaunch || state == kStateResume;
}

bool isMilestone(std::int64_t launches) {
  return launches == 3 || launches == 5 || launches == kLastMilestone;
}

}  // namespace

void Activations::activationForLR(Dictionary& flags, DefaultsChanges& changes, char state) {
  if (!counts(state)) {
    return;
  }
  const std::int64_t next = defaults_.integer(kLaunchOrResumeDefault) + 1;
  if (isMilestone(next)) {
    flags.set("~a:LR" + std::to_string(next), "1");
  } else if (next > kLastMilestone) {
    return;
  }
  changes.push_back(DefaultsChange::set(kLaunchOrResumeDefault, next));
}

void Activations::raiseWhen(bool due, Dictionary& flags, DefaultsChanges& changes, const char* flag) {
  if (due && !isSent(flag)) {
    flags.set(flag, "1");
    changes.push_back(DefaultsChange::set(flag, true));
  }
}

void Activations::activationsForUniqueDays(Dictionary& flags, DefaultsChanges& changes, char state) {
  if (!counts(state)) {
    return;
  }
  // Once everything is sent, launches no longer pay for calendar and user defaults.
  const bool allOfLastWeekSent = isSent("~a:2DL7") && isSent("~a:3DL7");
  if (allOfLastWeekSent && isSent("~a:3UD") && isSent("~a:5UD") && isSent("~a:7UD")) {
    return;
  }
  const auto stored = defaults_.get(kSevenDaysDefault);
  Array days = stored && stored->array() != nullptr ? *stored->array() : Array();
  const double now = clock_.now();
  const Value today = calendar_.dayStringFromToday(0, now);
  if (!days.empty() && days.front() == today) {  // Only the latest: a clock set back counts a day again.
    return;
  }
  days.insert(days.begin(), today);
  days.resize(std::min(days.size(), kMostDaysKept));
  raiseWhen(days.size() >= 3, flags, changes, "~a:3UD");
  raiseWhen(days.size() >= 5, flags, changes, "~a:5UD");
  raiseWhen(days.size() >= 7, flags, changes, "~a:7UD");
  if (!allOfLastWeekSent) {
    const std::size_t daysOfUse = daysOfUseInLastWeek(days, now);
    raiseWhen(daysOfUse >= 2, flags, changes, "~a:2DL7");
    raiseWhen(daysOfUse >= 3, flags, changes, "~a:3DL7");
  }
  changes.push_back(DefaultsChange::set(kSevenDaysDefault, std::move(days)));
}

// Kept: searches for local days, with the year of their week, among GMT days with the calendar year.
std::size_t Activations::daysOfUseInLastWeek(const Array& days, double now) {
  std::set<std::string> lastWeek;
  for (int day = 0; day < kLastDaysLookedAt; ++day) {
    lastWeek.insert(locale_.formatWeekYearDay(calendar_.addingDays(now, -day)));
  }
  std::set<std::string> found;
  for (const Value& day : days) {
    if (day.text() != nullptr && lastWeek.contains(*day.text())) {
      found.insert(*day.text());
    }
  }
  return found.size();
}

}  // namespace kesu
