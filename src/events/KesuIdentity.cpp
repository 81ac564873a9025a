#include <kesu/events/KesuIdentity.h>
#include <kesu/platform/Platform.h>

#include <string>
#include <string_view>
#include <utility>

#include "events/EventPoster.h"
#include "foundation/Json.h"
#include "foundation/Keepable.h"
#include "records/DefaultsKeys.h"
#include "records/RecordKeys.h"
#include "support/KesuPriorityLogger.h"

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

void removeIdentifier() {
  const auto stored = Platform::current().defaults.get(kIdentityKey);
  const Dictionary* entries = stored ? stored->dictionary() : nullptr;
  if (entries != nullptr && entries->contains(kAppSpecificUserId)) {
    Dictionary identity = *entries;
    identity.remove(kAppSpecificUserId);
    store(std::move(identity));
  }
}

/// Whether the identifier can be kept, which a null at any depth cannot, and sent in a record. Dates and bytes are sent
/// as their description.
bool fitsInRecord(const Value& identifier) {
  std::string json;
  const bool isDescribed = identifier.date() != nullptr || identifier.data() != nullptr;
  const bool isJson = writeJson(Dictionary{{std::string(kUserIdentifierKey), identifier}}, json) == JsonStatus::Ok;
  return isDescribed || (isJson && keepableCopy(identifier) == identifier);
}

}  // namespace

void KesuIdentity::setUserIdentifer(const Object& identifier) {
  if (identifier && !fitsInRecord(*identifier)) {
    // The former one would report what this user does as another's.
    removeIdentifier();
    KESU_LOG(0, "The user identifier cannot be sent and is refused; records carry none until another one is set");
    return;
  }
  setObjectToUserDefaults(identifier.value_or(""), kAppSpecificUserId);
  if (!identifier) {
    KESU_LOG(2, "A missing user identifier is stored as \"\" and not reported; resetUserIdentifer() removes it");
    return;
  }
  EventPoster::shared().postAppEventToTableU({{std::string(kUserIdentifierKey), *identifier}});
}

void KesuIdentity::resetUserIdentifer() {
  removeIdentifier();
  EventPoster::shared().postAppEventToTableU({{std::string(kUserIdentifierKey), ""}});
}

void KesuIdentity::postTraits(const Attributes& traits) {
  EventPoster::shared().postAppEventToTableU(traits);
}

}  // namespace kesu
