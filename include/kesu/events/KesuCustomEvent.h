#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Events that the host names freely. Every operation may be called on any thread, copies its arguments and returns
/// before anything is sent. Posting before Kesu::initialize throws InternalInconsistencyException. An event whose name
/// is missing, empty or blank is ignored.
class KESU_API KesuCustomEvent {
 public:
  KesuCustomEvent() = delete;

  /// Posts an event with a copy of the attributes. [KesuCustomEvent postWithEventName:] and
  /// [KesuCustomEvent postWithEventName:withAttributes:]
  static void postWithEventName(const Object& name, const Attributes& attributes = {});

  /// Posts an event with "elapsedSeconds": the seconds (three decimals) since `timerReference`, which
  /// Kesu::timerReference() returned when the activity began. A reference of 0 posts without it; one from the future
  /// too, with a log line of level 2. [KesuCustomEvent postTimedWithEventName:withTimerReference:] and
  /// [KesuCustomEvent postTimedWithEventName:withTimerReference:withAttributes:]
  static void postTimedWithEventName(const Object& name, double timerReference, const Attributes& attributes = {});
};

}  // namespace kesu
