#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/HttpClient.h>
#include <kesu/platform/UserDefaults.h>

#include <optional>
#include <string>

#include "services/DeploymentSettings.h"
#include "services/ServiceRequest.h"

namespace kesu {

/// The object behind KesuPersonalizationIntelligence, where the first operations are documented. Any thread;
/// completions are called on the main loop, but not by an exit handler.
class PersonalizationTags {
 public:
  PersonalizationTags(HttpClient& http, UserDefaults& defaults, DeploymentSettings& settings)
      : http_(http), defaults_(defaults), settings_(settings) {}

  void getTags(ServiceReplyHandler completion);
  bool isTagSet(const Object& tag);
  bool areAnyTagsSet(const Array& tags);
  bool areAllTagsSet(const Array& tags);

  /// Returns the object of this process, created at the first call.
  static PersonalizationTags& shared();

  using Provider = PersonalizationTags& (*)();

  /// Sets the function that creates the object. Called once, by the facade, which knows all objects.
  static void setProvider(Provider provider);

  // Owed to hosts and to the agreed interface; no caller inside the library but this class.

  /// Sends a body; the handler receives the parsed reply. Does nothing when the body cannot be JSON.
  /// [postInternalWithDictionary:forHandler:]
  void postInternalWithDictionary(const Dictionary& body, ServiceReplyHandler handler);

  /// Returns the request that carries a body; nothing when it cannot be JSON. [requestFromDictionary:]
  std::optional<HttpRequest> requestFromDictionary(const Dictionary& body);

 private:
  std::string url();
  Array storedTags();
  void finish(const Object& reply, const ServiceReplyHandler& completion);

  HttpClient& http_;
  UserDefaults& defaults_;
  DeploymentSettings& settings_;
};

}  // namespace kesu
