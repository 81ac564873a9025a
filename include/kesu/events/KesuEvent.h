#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <string>

namespace kesu {

/// A named event with free attributes, on its way to the collector.
///
/// A short-lived value of one thread: make it, fill it, post it once. Posting costs the caller a copy of the
/// attributes into a log on disk, where the event survives the death of the process from then on; the background queue
/// delivers. Posting before Kesu::initialize throws InternalInconsistencyException and records nothing. An event whose
/// name is missing, empty or blank is ignored.
class KESU_API KesuEvent {
 public:
  KesuEvent() = default;

  /// Posts an event without attributes. Any thread. [KesuEvent post:]
  static void post(const Object& name);

  /// Posts an event with a copy of the attributes. Any thread. The name replaces an attribute "~e".
  /// [KesuEvent postWithEventName:withAttributes:]
  static void postWithEventName(const Object& name, const Attributes& attributes = {});

  /// Adds one attribute, replacing one of that name. Nothing happens when the key or the value is missing, null, empty
  /// or only white space; otherwise both are stored as given. [KesuEvent addAttribute::]
  void addAttribute(const Object& key, const Object& value);

  /// Adds an attribute under the key "Level" likewise. [KesuEvent addLevelAttribute:]
  void addLevelAttribute(const Object& level);

  /// Posts to the table of events; the attributes are moved out. [KesuEvent post]
  void post();

  /// Posts to the table of SMS records, whatever the name; the attributes are moved out. [KesuEvent postEventForTableM]
  void postEventForTableM();

  Dictionary attributes;  ///< The record that is posted.
  Object name;            ///< Written into the record under "~e", as it is.
  std::string group;      ///< Kept: a reserved slot that nothing reads and no record carries.
};

}  // namespace kesu
