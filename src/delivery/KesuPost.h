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

/// Sends records to the collector, one request per record: the only place where they leave the device.
///
/// post() and repost() build the request on the caller's thread (any) and return. Replies are handled on the main loop,
/// where store files are written and deleted.
class KesuPost {
 public:
  KesuPost(HttpClient& http, UserDefaults& defaults, Clock& clock, DeploymentSettings& settings, KesuStore& store)
      : http_(http), defaults_(defaults), clock_(clock), settings_(settings), store_(store) {}

  /// Sends a record for the first time. Stores it if it cannot be delivered; drops it if the collector refuses it for
  /// good (400, 403); neither sends nor stores what cannot be written as JSON. [KesuPost post:]
  void post(Dictionary record) { postInternal(std::move(record), PostKind::First); }

  /// Sends a stored record again, which carries its file name under "fnk". A 2xx reply deletes the file, any other
  /// outcome leaves it for the next pass. [KesuPost repost:]
  void repost(Dictionary record) { postInternal(std::move(record), PostKind::Resend); }

  /// Returns "10-i-3.2.3", the value of header "v". [KesuPost FullVersionHeader]
  static const std::string& FullVersionHeader();

  // Owed to hosts and to the agreed interface; no caller inside the library but this class.

  /// Returns the collector's URL, chosen at the first call and kept for the life of the process, whatever the
  /// destination. [KesuPost postURL:]
  std::string postURL(const std::string& destination);

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
