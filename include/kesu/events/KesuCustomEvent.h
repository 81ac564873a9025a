#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Events that the host names freely. Every operation may be called on any thread, copies what it is given and returns
/// before anything is sent. Posting before Kesu::initialize throws InternalInconsistencyException; a missing, empty or
/// blank name is ignored.
class KESU_API KesuCustomEvent {
 public:
  KesuCustomEvent() = delete;

  /// [KesuCustomEvent postWithEventName:] and [KesuCustomEvent postWithEventName:withAttributes:]
  static void postWithEventName(const Object& name, const Attributes& attributes = {});

  /// [KesuCustomEvent postTimedWithEventName:withTimerReference:] and
  /// [KesuCustomEvent postTimedWithEventName:withTimerReference:withAttributes:]
  /// Posts with "elapsedSeconds": the seconds (three decimals) since `timerReference`, which Kesu::timerReference()
  /// gave when the activity began. A reference of 0 posts without it; one from the future too, with a level-2 log line.
  static void postTimedWithEventName(const Object& name, double timerReference, const Attributes& attributes = {});
};

}  // namespace kesu
