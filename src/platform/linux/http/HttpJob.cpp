#include "platform/linux/http/HttpJob.h"

#include "platform/linux/http/HttpHeaderLines.h"

namespace kesu {

bool prepareJob(HttpJob& job) {
  HttpRequest& request = job.request;
  request.method = cleanMethod(request.method);
  if (request.method == "HEAD") {
    request.body.clear();
  }
  const auto url = parseHttpUrl(request.url);
  if (!url) {
    return false;
  }
  request.url = url->text;
  job.origin = url->origin;
  job.namedOrigin = url->origin;
  // Decided here, before a redirect turns a POST into a GET: what it carried stays private.
  job.mayLeaveOrigin = request.body.empty() && (request.method == "GET" || request.method == "HEAD");
  return true;
}

HttpReply failedReply(HttpError error, const char* text) {
  HttpReply reply;
  reply.error = error;
  reply.errorText = text;
  return reply;
}

}  // namespace kesu
