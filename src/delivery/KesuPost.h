#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/HttpClient.h>
#include <kesu/platform/UserDefaults.h>

#include <optional>
#include <string>

#include "delivery/KesuStore.h"
#include "delivery/PostOutcome.h"
#include "foundation/Mutex.h"
#include "services/DeploymentSettings.h"

namespace kesu {

/// Sends records to the collector, one request a record: the only place where they leave the device.
///
/// post() and repost() build the request on the caller's thread (any) and return; the reply is handled on the main
/// loop, where the store is written and its files are deleted.
class KesuPost {
 public:
  KesuPost(HttpClient& http, UserDefaults& defaults, Clock& clock, DeploymentSettings& settings, KesuStore& store)
      : http_(http), defaults_(defaults), clock_(clock), settings_(settings), store_(store) {}

  /// First attempt. What cannot be delivered is stored; what the collector refuses for good (400, 403) is dropped; what
  /// cannot be written as JSON is neither sent nor stored.
  void post(Dictionary record) { postInternal(std::move(record), PostKind::First); }

  /// Sends a stored record again; it carries its file name under "fnk". A 2xx reply deletes the file, anything else
  /// leaves it for the next pass.
  void repost(Dictionary record) { postInternal(std::move(record), PostKind::Resend); }

  /// The collector's URL: chosen at the first call and kept for the life of the process. The destination does not
  /// matter.
  std::string postURL(const std::string& destination);

  /// "10-i-3.2.3": what header "v" says.
  static const std::string& FullVersionHeader();

 private:
  void postInternal(Dictionary record, PostKind kind);
  std::optional<HttpRequest> requestFromDictionary(const Dictionary& record);
  void finish(const Dictionary& record, PostKind kind, const HttpReply& reply);

  HttpClient& http_;
  UserDefaults& defaults_;
  Clock& clock_;
  DeploymentSettings& settings_;
  KesuStore& store_;

  Mutex endpointMutex_;
  std::string endpoint_ KESU_GUARDED_BY(endpointMutex_);
};

}  // namespace kesu
