#pragma once

#include <kesu/platform/HttpClient.h>

#include "platform/linux/http/HttpUrl.h"

namespace kesu {

/// A request on its way through the client, with what redirects have made of it.
struct HttpJob {
  HttpRequest request;  ///< As it is sent next; request.url is the `text` of an HttpUrl once the job has an origin.
  HttpClient::Completion completion;
  HttpOrigin origin;            ///< Where it is sent next.
  HttpOrigin namedOrigin;       ///< Where the caller sent it.
  bool mayLeaveOrigin = false;  ///< Only what carries no body of the caller may be redirected to another origin.
  int redirects = 0;            ///< Followed so far.
};

/// Makes a new job ready to be sent: cleans its method and finds its origin. False when its URL is not an absolute
/// http(s) URL.
bool prepareJob(HttpJob& job);

/// Makes the reply to a request that got none.
HttpReply failedReply(HttpError error, const char* text);

}  // namespace kesu
