#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/UserDefaults.h>

namespace kesu {

/// The application and the installation that send a request to the messaging or the personalization service. Nil where
/// the user defaults have none.
struct ServiceCredentials {
  Object kak;    ///< The application key.
  Object kaid;   ///< The installation's identifier.
  Object kaid2;  ///< Its second identifier.
};

/// Reads the credentials from the user defaults. Any thread.
ServiceCredentials storedCredentials(UserDefaults& defaults);

/// Makes a body with "kak", "kaid" and "kaid2", each only when it is present and not "". Any thread.
/// [addKakAndKaid:kaid:kaid2:]
Dictionary addKakAndKaid(const ServiceCredentials& who);

/// Whether there is no such text, or it is empty. Any thread.
bool isMissingOrEmpty(const Object& text);

}  // namespace kesu
