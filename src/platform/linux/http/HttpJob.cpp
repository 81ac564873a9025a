#include "platform/linux/http/HttpJob.h"

#include "platform/linux/http/HttpHeaderLines.h"

namespace kesu {

void prepareJob(HttpJob& job, const HttpUrl& url) {
  HttpRequest& request = job.request;
  request.method = cleanMethod(request.method);
  if (request.method == "HEAD") {
    request.body.clear();
  }
  request.url = url.text;
  job.origin = url.origin;
  job.namedOrigin = url.origin;
  // Decided here, before a redirect turns a POST into a GET: what it carried stays private.
  job.mayLeaveOrigin = request.body.empty() && (request.method == "GET" || request.method == "HEAD");
}

HttpReply failedReply(HttpError error, const char* text) {
  HttpReply reply;
  reply.error = error;
  reply.errorText = text;
  return reply;
}

}  // namespace kesu
