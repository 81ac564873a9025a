#pragma once

#include <kesu/foundation/Value.h>

#include <span>
#include <string_view>

namespace kesu::dev {

/// What a key belongs to. Views of a record fold the Common ones away.
enum class KeyGroup {
  Common,        // The columns that every record carries.
  Location,      // Where the device is, where the platform knows.
  Installation,  // The device; sent once, in the installation record.
  State,         // State changes of the application.
  Flow,          // Screens, events and scenes of a session in one compact text.
  Trait,         // The installation as it is now: locale, push, integrity.
  Period,        // First sign of life in an hour, day, week, month or quarter.
  Activation,    // Milestones; each is sent once.
  Event,         // Named by the host.
  InAppMessage,  // Receipts and button presses.
};

/// What a value must look like.
enum class KeyForm {
  Any,
  Text,          // A text, may be empty.
  FilledText,    // A text that is not empty.
  Milliseconds,  // A text of decimal digits: milliseconds since 1970.
  MessageId,     // 22 characters of base64: 16 random bytes without padding.
};

/// One short key of the wire format. Validation, terminal views and `GET /keys` all read this table.
struct KeyInfo {
  std::string_view key;
  KeyGroup group;
  KeyForm form;
  std::string_view requiredFor;  // Destination letters whose records must carry it.
  std::string_view allowedFor;   // Destination letters that may carry it; empty = all.
  std::string_view meaning;
};

/// A destination: the collector's table that a record is meant for, as in the header "t".
struct DestinationInfo {
  std::string_view code;
  std::string_view name;
  std::string_view meaning;
};

/// A state of the application, as in the key "~ns".
struct StateInfo {
  std::string_view code;
  std::string_view meaning;
};

/// The header "t" of a sender that knew no destination.
inline constexpr std::string_view kUnknownDestination = "UnknownDestination";

std::span<const KeyInfo> allKeys();

/// Find the row of a key, destination code or state letter; null when there is none.
const KeyInfo* findKey(std::string_view key);
const DestinationInfo* findDestination(std::string_view code);
const StateInfo* findState(std::string_view code);

std::string_view groupName(KeyGroup group);

/// Returns all three tables, for `GET /keys`.
Dictionary describeKeys();

}  // namespace kesu::dev
