#include <kesu/events/KesuExplicitActivation.h>

#include "events/EventPoster.h"
#include "records/RecordKeys.h"

namespace kesu {

void KesuExplicitActivation::post(const Attributes& attributes) {
  Dictionary record = attributes;
  record.set(kExplicitActivationKey, "1");
  EventPoster::shared().postActivationTrait(record);
}

}  // namespace kesu
