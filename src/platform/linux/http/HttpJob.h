#pragma once

#include <kesu/platform/HttpClient.h>

#include "platform/linux/http/HttpUrl.h"

namespace kesu {

/// A request in the client, as redirects have changed it.
struct HttpJob {
  HttpRequest request;  ///< As it is sent next; request.url is the `text` of an HttpUrl once the job has an origin.
  HttpClient::Completion completion;
  HttpOrigin origin;            ///< The server to which it is sent next.
  HttpOrigin namedOrigin;       ///< The server that the caller named.
  bool mayLeaveOrigin = false;  ///< Only a request without a body may be redirected to another origin.
  int redirects = 0;            ///< Followed so far.
};

/// Prepares a new job: cleans its method and finds its origin. Returns false when its URL is not an absolute http(s)
/// URL.
bool prepareJob(HttpJob& job);

/// Makes the reply to a request that got none.
HttpReply failedReply(HttpError error, const char* text);

}  // namespace kesu
