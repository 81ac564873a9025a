#include <kesu/events/KesuCustomEvent.h>
#include <kesu/events/KesuEvent.h>
#include <kesu/platform/Platform.h>

#include "foundation/NumberText.h"
#include "records/RecordKeys.h"
#include "records/TimeReference.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr int kDecimalsOfElapsedSeconds = 3;  // Milliseconds.

void addElapsedSeconds(Attributes& attributes, double timerReference) {
  const double elapsed = timerReferenceAt(Platform::current().clock.now()) - timerReference;
  if (elapsed >= 0.0) {
    attributes.set(kElapsedSecondsKey, fixed(elapsed, kDecimalsOfElapsedSeconds));
  } else if (elapsed < 0.0) {
    KESU_LOG(2, "The input timer reference is newer than current time.");
  }
}

}  // namespace

void KesuCustomEvent::postWithEventName(const Object& name, const Attributes& attributes) {
  KesuEvent::postWithEventName(name, attributes);
}

void KesuCustomEvent::postTimedWithEventName(const Object& name, double timerReference, const Attributes& attributes) {
  Attributes timed = attributes;
  if (timerReference != 0.0) {
    addElapsedSeconds(timed, timerReference);
  }
  KesuEvent::postWithEventName(name, timed);
}

}  // namespace kesu
