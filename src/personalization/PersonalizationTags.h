#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/HttpClient.h>
#include <kesu/platform/UserDefaults.h>

#include <optional>
#include <string>

#include "services/DeploymentSettings.h"
#include "services/ServiceRequest.h"

namespace kesu {

/// The object behind KesuPersonalizationIntelligence. Any thread; completions are called on the main loop, but not by
/// an exit handler.
class PersonalizationTags {
 public:
  PersonalizationTags(HttpClient& http, UserDefaults& defaults, DeploymentSettings& settings)
      : http_(http), defaults_(defaults), settings_(settings) {}

  /// See KesuPersonalizationIntelligence.
  void getTags(ServiceReplyHandler completion);
  bool isTagSet(const Object& tag);
  bool areAnyTagsSet(const Array& tags);
  bool areAllTagsSet(const Array& tags);

  /// [postInternalWithDictionary:forHandler:] Sends a body; the handler gets the parsed reply. When no request can be
  /// made of it, nothing happens.
  void postInternalWithDictionary(const Dictionary& body, ServiceReplyHandler handler);

  /// [requestFromDictionary:] The request that carries a body; nothing when it cannot be JSON.
  std::optional<HttpRequest> requestFromDictionary(const Dictionary& body);

  /// The object of this process, made at the first call.
  static PersonalizationTags& shared();

  using Provider = PersonalizationTags& (*)();

  /// Names who makes the object. The facade does so once.
  static void setProvider(Provider provider);

 private:
  std::string url();
  Array storedTags();
  void finish(const Object& reply, const ServiceReplyHandler& completion);

  HttpClient& http_;
  UserDefaults& defaults_;
  DeploymentSettings& settings_;
};

}  // namespace kesu
