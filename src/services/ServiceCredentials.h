#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/UserDefaults.h>

namespace kesu {

/// Who asks the messaging or the personalization service: the application and the installation. Nil where the user
/// defaults have none.
struct ServiceCredentials {
  Object kak;    ///< The application key.
  Object kaid;   ///< The installation's identifier.
  Object kaid2;  ///< Its second identifier.
};

/// The credentials in the user defaults. Any thread.
ServiceCredentials storedCredentials(UserDefaults& defaults);

/// [addKakAndKaid:kaid:kaid2:] A body with "kak", "kaid" and "kaid2", each only when it is there and not "". Any
/// thread.
Dictionary addKakAndKaid(const ServiceCredentials& who);

/// Whether there is no such text, or it is empty. Any thread.
bool isMissingOrEmpty(const Object& text);

}  // namespace kesu
