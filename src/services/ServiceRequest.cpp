#include "services/ServiceRequest.h"

#include <utility>

#include "foundation/Describe.h"
#include "services/HttpStatusText.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

void logRefusal(const char* reason) {
  KESU_LOG(0, "JSON serialization exception: %s and the reason %s", "NSInvalidArgumentException", reason);
}

bool serialise(std::span<const JsonField> body, std::string& text) {
  switch (writeJson(body, text)) {
    case JsonStatus::Ok:
      return true;
    case JsonStatus::NotValid:
      return false;
    case JsonStatus::TooDeep:
      logRefusal("the body is nested too deeply");
      return false;
    case JsonStatus::BadText:
      logRefusal("a text of the body is not valid UTF-8");
      return false;
  }
  return false;
}

bool isSuccess(const HttpReply& reply) {
  return reply.status >= 200 && reply.status <= 299;
}

void logFailure(const HttpReply& reply, const LogPlace& place) {
  const char* error = reply.error == HttpError::None ? kDescriptionOfNothing : reply.errorText.c_str();
  const std::string meaning(httpStatusText(reply.status));
  KESU_LOG_AT(3, place.source, place.line, "Error: Status Code %ld, %s - %s", static_cast<long>(reply.status), error,
              meaning.c_str());
}

}  // namespace

std::optional<HttpRequest> jsonRequest(const Dictionary& body, std::string method, std::string url) {
  std::vector<JsonField> fields;
  fields.reserve(body.size());
  for (const auto& [key, value] : body) {
    fields.push_back({key, &value});
  }
  HttpRequest request;
  request.method = std::move(method);
  request.url = std::move(url);
  return jsonRequest(fields, std::move(request));
}

std::optional<HttpRequest> jsonRequest(std::span<const JsonField> body, HttpRequest request) {
  if (!serialise(body, request.body)) {
    return std::nullopt;
  }
  request.headers.reserve(request.headers.size() + 3);
  request.headers.emplace_back("Content-Type", "application/json");
  request.headers.emplace_back("Accept-Encoding", "gzip");
  request.headers.emplace_back("Content-Length", std::to_string(request.body.size()));
  return request;
}

void handleServiceReply(const HttpReply& reply, const LogPlace& place, const ServiceReplyHandler& handler) {
  if (reply.error != HttpError::None || !isSuccess(reply)) {
    logFailure(reply, place);
    if (handler) {
      handler(nil);
    }
  }
  if (reply.body && isSuccess(reply) && handler) {
    handler(Object(parseJson(*reply.body)));
  }
}

void sendServiceRequest(HttpClient& http, HttpRequest request, const LogPlace& place, ServiceReplyHandler handler) {
  http.send(std::move(request), [place, handler = std::move(handler)](const HttpReply& reply) {
    handleServiceReply(reply, place, handler);
  });
}

}  // namespace kesu
