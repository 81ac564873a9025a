#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <string>

namespace kesu {

/// A named event with free attributes, on its way to the collector.
///
/// A short-lived value of one thread: make it, fill it, post it, drop it. Posting costs the caller a copy of the
/// attributes, one append to the event flow and one enqueue; delivery happens elsewhere. Posting before
/// Kesu::initialize throws InternalInconsistencyException and records nothing.
class KESU_API KesuEvent {
 public:
  KesuEvent() = default;

  /// [KesuEvent post:] Posts an event without attributes. Any thread. A missing, empty or blank name: nothing happens.
  static void post(const Object& name);

  /// [KesuEvent postWithEventName:withAttributes:] Posts an event with a copy of the attributes. Any thread. A missing,
  /// empty or blank name: nothing happens. An attribute called "~e" is overwritten by the name.
  static void postWithEventName(const Object& name, const Attributes& attributes = {});

  /// [KesuEvent addAttribute::] Adds one attribute, replacing one of that name. Nothing happens when the key or the
  /// value is missing, null, empty or only white space; otherwise both are stored as given.
  void addAttribute(const Object& key, const Object& value);

  /// [KesuEvent addLevelAttribute:] The same under the key "Level".
  void addLevelAttribute(const Object& level);

  /// [KesuEvent post] Posts to the table of events. A missing, empty or blank name: nothing happens.
  void post();

  /// [KesuEvent postEventForTableM] Posts to the table of SMS records, without looking at the name.
  void postEventForTableM();

  Dictionary attributes;  ///< The record that is posted.
  Object name;            ///< Written into the record under "~e", as it is.
  std::string group;      ///< Kept: a reserved slot that nothing reads and no record carries.

 private:
  void recordName();
};

}  // namespace kesu
