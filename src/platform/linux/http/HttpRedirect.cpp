#include "platform/linux/http/HttpRedirect.h"

#include <algorithm>
#include <string_view>

#include "foundation/Text.h"

namespace kesu {
namespace {

constexpr int kMaxRedirects = 16;  // A common limit of platform loaders: more is a circle.

bool becomesGet(int status, const std::string& method) {
  return ((status == 301 || status == 302) && method == "POST") || (status == 303 && method != "HEAD");
}

void dropBody(HttpRequest& request) {
  request.method = "GET";
  request.body.clear();
  std::erase_if(request.headers,
                [](const auto& header) { return asciiLowerCase(header.first).starts_with("content-"); });
}

bool saysNothingAboutTheUser(const std::string& name) {
  return equalsIgnoringCase(name, "accept") || equalsIgnoringCase(name, "accept-encoding") ||
         equalsIgnoringCase(name, "accept-language");
}

}  // namespace

bool isRedirect(int status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

HttpRedirectVerdict applyRedirect(HttpJob& job, int status, const std::string& location) {
  const bool dropsBody = becomesGet(status, job.request.method);
  if (!isRedirect(status) || location.empty() || (dropsBody && job.request.isFutileWithoutBody)) {
    return HttpRedirectVerdict::Final;
  }
  const auto target = parseHttpUrl(location);
  const bool leaves = target && target->origin != job.namedOrigin;
  if (!target || job.redirects >= kMaxRedirects || (leaves && !job.mayLeaveOrigin)) {
    return HttpRedirectVerdict::Refuse;
  }
  if (dropsBody) {
    dropBody(job.request);
  }
  if (leaves) {
    std::erase_if(job.request.headers, [](const auto& header) { return !saysNothingAboutTheUser(header.first); });
  }
  job.request.url = target->text;
  job.origin = target->origin;
  ++job.redirects;
  return HttpRedirectVerdict::Follow;
}

}  // namespace kesu
