#include "tools/kesu-dev/records/KeyTable.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>

namespace kesu::dev {
namespace {

using enum KeyGroup;
using enum KeyForm;

// Destinations whose records get the common columns. Message records ("n") are built without them.
constexpr std::string_view kWithColumns = "istuemp";
constexpr std::string_view kNone;

constexpr std::array kDestinations{
    DestinationInfo{"i", "installs", "the installation record, sent once per installation"},
    DestinationInfo{"s", "states", "state changes: launch, resume, background, terminate, screens"},
    DestinationInfo{"e", "events", "events that the host posted"},
    DestinationInfo{"t", "traits", "what the installation is like, and its activation milestones"},
    DestinationInfo{"u", "user", "user identity"},
    DestinationInfo{"m", "sms", "SMS registration and verification"},
    DestinationInfo{"p", "permissions", "permissions granted by the user"},
    DestinationInfo{"n", "messages", "receipts and button presses of in-app messages"},
};

constexpr std::array kStates{
    StateInfo{"l", "launch"},    StateInfo{"r", "resume"},          StateInfo{"b", "background"},
    StateInfo{"t", "terminate"}, StateInfo{"a", "screen appeared"}, StateInfo{"d", "screen disappeared"},
};

constexpr std::array kKeys{
    // The columns that every record carries.
    KeyInfo{"kak", Common, FilledText, kWithColumns, kNone, "application key given to initialize"},
    KeyInfo{"~v", Common, FilledText, kWithColumns, kNone, "version: data format, system, library (as header v)"},
    KeyInfo{"kaid", Common, FilledText, kWithColumns, kNone, "identifier of this installation"},
    KeyInfo{"ace", Common, Milliseconds, kWithColumns, kNone, "when the record was made, ms since 1970"},
    KeyInfo{"ase", Common, Milliseconds, "istuempn", kNone, "when the record was sent, ms since 1970"},
    KeyInfo{"msg_id", Common, MessageId, kWithColumns, kNone, "identifier of this record; tells copies apart"},
    KeyInfo{"prd", Common, FilledText, "ti", "ti", "device product"},
    KeyInfo{"~uid", Common, Any, kNone, kNone, "user identifier set by the host"},
    KeyInfo{"ldt", Common, FilledText, kWithColumns, kNone, "date and time on the device when the record was made"},
    KeyInfo{"rv", Common, Text, kNone, kNone, "build number of the application"},
    KeyInfo{"av", Common, Text, kNone, kNone, "version of the application"},
    KeyInfo{"ov", Common, Text, kWithColumns, kNone, "version of the operating system"},
    KeyInfo{"long", Location, Any, kNone, kNone, "longitude without its sign"},
    KeyInfo{"lat", Location, Any, kNone, kNone, "latitude without its sign"},
    KeyInfo{"alt", Location, Any, kNone, kNone, "altitude without its sign"},
    // The installation record.
    KeyInfo{"kaid2", Installation, Any, kNone, kNone, "second identifier of this installation"},
    KeyInfo{"idv", Installation, Any, kNone, kNone, "vendor identifier, hashed"},
    KeyInfo{"dn", Installation, Any, kNone, kNone, "name of the device, hashed"},
    KeyInfo{"an", Installation, Any, kNone, kNone, "display name of the application"},
    KeyInfo{"pkg", Installation, Any, kNone, kNone, "bundle identifier of the application"},
    KeyInfo{"sw", Installation, Any, kNone, kNone, "screen width"},
    KeyInfo{"sh", Installation, Any, kNone, kNone, "screen height"},
    KeyInfo{"mem", Installation, Any, kNone, kNone, "memory of the device"},
    KeyInfo{"np", Installation, Any, kNone, kNone, "processors"},
    KeyInfo{"nap", Installation, Any, kNone, kNone, "active processors"},
    KeyInfo{"pspd", Installation, Any, kNone, kNone, "processor speed"},
    KeyInfo{"bspd", Installation, Any, kNone, kNone, "bus speed"},
    // State changes.
    KeyInfo{"~ns", State, FilledText, "s", kNone,
            "new state: l launch, r resume, b background, t terminate, a/d screen"},
    KeyInfo{"~ld", State, Any, kNone, kNone, "how the application was launched"},
    KeyInfo{"~tf", State, Any, kNone, kNone, "from where the application terminated"},
    KeyInfo{"~sd", State, Any, kNone, kNone, "detail of the state: class name of the screen"},
    KeyInfo{"bl", State, Any, kNone, kNone, "battery level"},
    KeyInfo{"bs", State, Any, kNone, kNone, "battery state"},
    KeyInfo{"~o", State, Any, kNone, kNone, "device orientation"},
    KeyInfo{"umem", State, Any, kNone, kNone, "memory used by the process"},
    KeyInfo{"~r", State, Any, kNone, kNone, "how the network was reachable"},
    KeyInfo{"cssid", State, Any, kNone, kNone, "name of the Wi-Fi network"},
    KeyInfo{"cbssid", State, Any, kNone, kNone, "access point of the Wi-Fi network"},
    KeyInfo{"~u", State, Any, kNone, kNone, "uptime of the device"},
    // Flows: "$$name~~seconds" once for each entry, nothing between them.
    KeyInfo{"~sf", Flow, Any, kNone, kNone, "screens of the session and seconds on each"},
    KeyInfo{"~ef", Flow, Any, kNone, kNone, "events of the session in order"},
    KeyInfo{"~uf", Flow, Any, kNone, kNone, "scenes named by the host, or screens of a run that ended unsent"},
    KeyInfo{"~cfqt", Flow, Any, kNone, kNone, "last screen change of a run that crashed or was killed, ms since 1970"},
    // Traits.
    KeyInfo{"mid", Trait, Any, kNone, kNone, "message identifier of the last notification or message"},
    KeyInfo{"cid", Trait, Any, kNone, kNone, "campaign identifier of the last notification or message"},
    KeyInfo{"kesupushIdentifier", Trait, Any, kNone, kNone, "identifier the host gave the last notification"},
    KeyInfo{"~x", Trait, Any, kNone, kNone, "repair: the server may rebuild its row from this record"},
    KeyInfo{"pn", Trait, Any, kNone, kNone, "device token for remote notifications"},
    KeyInfo{"cn", Trait, Any, kNone, kNone, "carrier name"},
    KeyInfo{"ccc", Trait, Any, kNone, kNone, "carrier country"},
    KeyInfo{"cmm", Trait, Any, kNone, kNone, "carrier network code"},
    KeyInfo{"lrg", Trait, Any, kNone, kNone, "locale"},
    KeyInfo{"lco", Trait, Any, kNone, kNone, "country of the locale"},
    KeyInfo{"lan", Trait, Any, kNone, kNone, "first preferred language"},
    KeyInfo{"al", Trait, Any, kNone, kNone, "language the application shows"},
    KeyInfo{"lpl", Trait, Any, kNone, kNone, "all preferred languages"},
    KeyInfo{"lca", Trait, Any, kNone, kNone, "calendar of the locale"},
    KeyInfo{"jb", Trait, Any, kNone, kNone, "1 when the device looks tampered with"},
    KeyInfo{"pm", Trait, Any, kNone, kNone, "how the application was distributed"},
    KeyInfo{"pas", Trait, Any, kNone, kNone, "1 when installed from the store"},
    KeyInfo{"~ft", Trait, Any, kNone, kNone, "1: a full set of traits"},
    // First sign of life in a period.
    KeyInfo{"~lh", Period, Any, kNone, kNone, "first record of a local hour: year-month-day-hour"},
    KeyInfo{"~h", Period, Any, kNone, kNone, "first record of a GMT hour: year-month-day-hour"},
    KeyInfo{"~d", Period, Any, kNone, kNone, "first record of a GMT day: year-month-day"},
    KeyInfo{"ltz", Period, Any, kNone, kNone, "name of the local time zone"},
    KeyInfo{"~m", Period, Any, kNone, kNone, "first record of a month: year-month"},
    KeyInfo{"~q", Period, Any, kNone, kNone, "first record of a quarter: year-quarter"},
    KeyInfo{"~w", Period, Any, kNone, kNone, "first record of a week: year-week"},
    // Milestones.
    KeyInfo{"~a:Activation", Activation, Any, kNone, kNone, "an activation that the host reported itself"},
    KeyInfo{"~a:LR3", Activation, Any, kNone, kNone, "third launch or resume"},
    KeyInfo{"~a:LR5", Activation, Any, kNone, kNone, "fifth launch or resume"},
    KeyInfo{"~a:LR10", Activation, Any, kNone, kNone, "tenth launch or resume"},
    KeyInfo{"~a:3UD", Activation, Any, kNone, kNone, "used on 3 different days"},
    KeyInfo{"~a:5UD", Activation, Any, kNone, kNone, "used on 5 different days"},
    KeyInfo{"~a:7UD", Activation, Any, kNone, kNone, "used on 7 different days"},
    KeyInfo{"~a:2DL7", Activation, Any, kNone, kNone, "used on 2 of the last 7 days"},
    KeyInfo{"~a:3DL7", Activation, Any, kNone, kNone, "used on 3 of the last 7 days"},
    KeyInfo{"~a:u5mo3D", Activation, Any, kNone, kNone, "5 minutes of use within 3 days"},
    KeyInfo{"~a:u10mo3D", Activation, Any, kNone, kNone, "10 minutes of use within 3 days"},
    KeyInfo{"~a:u15mo3D", Activation, Any, kNone, kNone, "15 minutes of use within 3 days"},
    KeyInfo{"~a:u30mo3D", Activation, Any, kNone, kNone, "30 minutes of use within 3 days"},
    KeyInfo{"~a:u5mo5D", Activation, Any, kNone, kNone, "5 minutes of use within 5 days"},
    KeyInfo{"~a:u10mo5D", Activation, Any, kNone, kNone, "10 minutes of use within 5 days"},
    KeyInfo{"~a:u15mo5D", Activation, Any, kNone, kNone, "15 minutes of use within 5 days"},
    KeyInfo{"~a:u30mo5D", Activation, Any, kNone, kNone, "30 minutes of use within 5 days"},
    KeyInfo{"~a:u5mo7D", Activation, Any, kNone, kNone, "5 minutes of use within 7 days"},
    KeyInfo{"~a:u10mo7D", Activation, Any, kNone, kNone, "10 minutes of use within 7 days"},
    KeyInfo{"~a:u15mo7D", Activation, Any, kNone, kNone, "15 minutes of use within 7 days"},
    KeyInfo{"~a:u30mo7D", Activation, Any, kNone, kNone, "30 minutes of use within 7 days"},
    KeyInfo{"~a:u15m", Activation, Any, kNone, kNone, "15 minutes of use in total"},
    KeyInfo{"~a:u30m", Activation, Any, kNone, kNone, "30 minutes of use in total"},
    KeyInfo{"~a:u60m", Activation, Any, kNone, kNone, "60 minutes of use in total"},
    // Events and messages.
    KeyInfo{"~e", Event, FilledText, "e", kNone, "name of the event"},
    KeyInfo{"action", InAppMessage, Any, kNone, kNone, "what happened to the message: delivered, cta"},
    KeyInfo{"btnId", InAppMessage, Any, kNone, kNone, "number of the button pressed"},
    KeyInfo{"btnName", InAppMessage, Any, kNone, kNone, "title of the button pressed"},
};

Dictionary describe(const KeyInfo& info) {
  return {{"key", info.key}, {"group", groupName(info.group)}, {"meaning", info.meaning}};
}

Dictionary describe(const DestinationInfo& info) {
  return {{"code", info.code}, {"name", info.name}, {"meaning", info.meaning}};
}

Dictionary describe(const StateInfo& info) {
  return {{"code", info.code}, {"meaning", info.meaning}};
}

template <typename Rows>
Array describeAll(const Rows& rows) {
  Array result;
  for (const auto& row : rows) {
    result.emplace_back(describe(row));
  }
  return result;
}

template <typename Rows>
const typename Rows::value_type* findCode(const Rows& rows, std::string_view code) {
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const auto& row) { return row.code == code; });
  return found == rows.end() ? nullptr : &*found;
}

}  // namespace

std::span<const KeyInfo> allKeys() {
  return kKeys;
}

const KeyInfo* findKey(std::string_view key) {
  static const auto index = [] {
    std::unordered_map<std::string_view, const KeyInfo*> rows;
    for (const KeyInfo& row : kKeys) {
      rows.emplace(row.key, &row);
    }
    return rows;
  }();
  const auto found = index.find(key);
  return found == index.end() ? nullptr : found->second;
}

const DestinationInfo* findDestination(std::string_view code) {
  return findCode(kDestinations, code);
}

const StateInfo* findState(std::string_view code) {
  return findCode(kStates, code);
}

std::string_view groupName(KeyGroup group) {
  switch (group) {
    case Common:
      return "common";
    case Location:
      return "location";
    case Installation:
      return "installation";
    case State:
      return "state";
    case Flow:
      return "flow";
    case Trait:
      return "trait";
    case Period:
      return "period";
    case Activation:
      return "activation";
    case Event:
      return "event";
    case InAppMessage:
      return "message";
  }
  return "";
}

Dictionary describeKeys() {
  return {{"keys", describeAll(kKeys)}, {"destinations", describeAll(kDestinations)}, {"states", describeAll(kStates)}};
}

}  // namespace kesu::dev
