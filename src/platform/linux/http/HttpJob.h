#pragma once

#include <kesu/platform/HttpClient.h>

#include <chrono>
#include <optional>

#include "platform/linux/http/HttpUrl.h"

namespace kesu {

/// A request in the client, as redirects have changed it.
struct HttpJob {
  HttpRequest request;  ///< As it is sent next; request.url is the `text` of an HttpUrl once the job has an origin.
  HttpClient::Completion completion;
  bool isInBackground = false;  ///< Its completion runs on the network thread.
  HttpOrigin origin;            ///< The server to which it is sent next.
  HttpOrigin namedOrigin;       ///< The server that the caller named.
  bool mayLeaveOrigin = false;  ///< Only a request without a body may be redirected to another origin.
  int redirects = 0;            ///< Followed so far.
  std::optional<std::chrono::steady_clock::time_point> deadline;  ///< Set when it was first started.
};

/// Prepares a new job for `url`, which its request names: cleans its method and sets its origin.
void prepareJob(HttpJob& job, const HttpUrl& url);

/// Makes the reply to a request that got none.
HttpReply failedReply(HttpError error, const char* text);

}  // namespace kesu
