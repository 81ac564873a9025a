#pragma once

#include <string>

#include "platform/linux/http/HttpJob.h"

namespace kesu {

/// What is done about a reply.
enum class HttpRedirectVerdict {
  Final,   ///< It is the answer: no redirect, or one that says not where to.
  Follow,  ///< The job has been changed and is to be sent again.
  Refuse   ///< HttpError::BadRedirect.
};

/// Judges a reply by its status and by where it points (absolute; empty without a Location) and turns the job into its
/// next hop if it is to be followed.
///
/// 301, 302, 303, 307 and 308 are followed, at most 16 times, to http and https only. 307 and 308 repeat method and
/// body; 301 and 302 turn POST into GET, 303 turns everything but HEAD into GET, as browsers and platform loaders do.
/// Only a GET or HEAD without a body may leave the origin (scheme, host and port) that the caller named, and then it
/// takes along no header but Accept, Accept-Encoding and Accept-Language: nothing about the user goes to a host that
/// the caller has not named. Everything else is refused there, not sent in part.
HttpRedirectVerdict applyRedirect(HttpJob& job, int status, const std::string& location);

}  // namespace kesu
