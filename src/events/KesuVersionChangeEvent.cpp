#include "events/KesuVersionChangeEvent.h"

#include <kesu/events/KesuCustomEvent.h>
#include <kesu/foundation/Exception.h>

#include "records/DefaultsKeys.h"

namespace kesu {

void KesuVersionChangeEvent::checkVersionChangeAndPost() {
  postVersionChangeWithEventName(k_OSVersionChanged, metrics_.systemVersion());
  postVersionChangeWithEventName(k_AppVersionChanged, bundle_.infoText("CFBundleShortVersionString"));
}

void KesuVersionChangeEvent::postVersionChangeWithEventName(std::string_view name,
                                                            const std::optional<std::string>& newVersion) {
  const std::string old = defaults_.text(name);
  if (old.empty()) {
    remember(name, newVersion);
  } else if (old != newVersion) {
    background_.post([this, name, old, newVersion] {
      try {
        KesuCustomEvent::postWithEventName(name, {{"oldver", old}, {"newver", newVersion.value_or("")}});
      } catch (const InternalInconsistencyException&) {
        return;  // A launch without a key. The old version stays, so that the next launch with a key reports the
                 // change.
      }
      remember(name, newVersion);
    });
  }
}

void KesuVersionChangeEvent::remember(std::string_view name, const std::optional<std::string>& version) {
  if (version) {
    defaults_.set(name, *version);
  } else {
    defaults_.remove(name);
  }
  defaults_.synchronize();
}

}  // namespace kesu
