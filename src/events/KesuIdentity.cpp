#include <kesu/events/KesuIdentity.h>
#include <kesu/platform/Platform.h>

#include <string_view>
#include <utility>

#include "events/EventPoster.h"
#include "records/DefaultsKeys.h"
#include "records/RecordKeys.h"

namespace kesu {
namespace {

void store(Dictionary identity) {
  UserDefaults& defaults = Platform::current().defaults;
  identity.set(kIdentityChanged, "1");
  defaults.set(kIdentityKey, std::move(identity));
  defaults.synchronize();
}

/// Kept: replaces the stored dictionary, so that only the latest entry and the mark of a change are in it.
void setObjectToUserDefaults(Value value, std::string_view key) {
  Dictionary identity;
  identity.set(key, std::move(value));
  store(std::move(identity));
}

}  // namespace

void KesuIdentity::setUserIdentifer(const Object& identifier) {
  setObjectToUserDefaults(identifier.value_or(""), kAppSpecificUserId);
  if (identifier) {
    EventPoster::shared().postAppEventToTableU({{std::string(kUserIdentifierKey), *identifier}});
  }
}

void KesuIdentity::resetUserIdentifer() {
  const auto stored = Platform::current().defaults.get(kIdentityKey);
  const Dictionary* entries = stored ? stored->dictionary() : nullptr;
  if (entries != nullptr && entries->contains(kAppSpecificUserId)) {
    Dictionary identity = *entries;
    identity.remove(kAppSpecificUserId);
    store(std::move(identity));
  }
  EventPoster::shared().postAppEventToTableU({{std::string(kUserIdentifierKey), ""}});
}

void KesuIdentity::postTraits(const Attributes& traits) {
  EventPoster::shared().postAppEventToTableU(traits);
}

}  // namespace kesu
