#pragma once

#include <string>

#include "platform/linux/http/HttpJob.h"

namespace kesu {

/// What to do with a reply.
enum class HttpRedirectVerdict {
  Final,   ///< Complete the request: no redirect, one without a target, or one that makes it futile.
  Follow,  ///< Send the job again: it was changed into the next request.
  Refuse   ///< HttpError::BadRedirect.
};

/// Whether replies of this status name another target.
bool isRedirect(int status);

/// Judges a reply by its status and its target (absolute; empty without a Location), and changes the job into the next
/// request if the redirect is followed.
///
/// 301, 302, 303, 307 and 308 are followed, at most 16 times, to http and https only. 307 and 308 repeat method and
/// body; 301 and 302 turn POST into GET, 303 turns everything but HEAD into GET, as browsers and platform loaders do.
/// Only a GET or HEAD without a body may leave the origin (scheme, host and port) that the caller named, and then with
/// no header but Accept, Accept-Encoding and Accept-Language: nothing about the user is sent to a host that the caller
/// has not named. Any other request is refused there, not sent in part.
HttpRedirectVerdict applyRedirect(HttpJob& job, int status, const std::string& location);

}  // namespace kesu
