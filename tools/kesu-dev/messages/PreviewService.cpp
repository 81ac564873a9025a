#include "tools/kesu-dev/messages/PreviewService.h"

#include <kesu/platform/MainLoop.h>

#include <utility>

#include "services/MessageKeys.h"
#include "tools/kesu-dev/base/Fields.h"

namespace kesu::dev {
namespace {

HttpReply reply(int status, std::string body) {
  HttpReply made;
  made.status = status;
  made.body = std::move(body);
  return made;
}

}  // namespace

void PreviewService::send(HttpRequest request, Completion completion) {
  HttpReply made;
  if (isDown_) {
    made.error = HttpError::Cancelled;
  } else {
    made = answer(request.url);
  }
  ++pending_;
  MainLoop::shared().post([this, made = std::move(made), completion = std::move(completion)]() mutable {
    --pending_;
    completion(std::move(made));
  });
}

HttpReply PreviewService::answer(const std::string& url) const {
  const std::string images = std::string(kOrigin) + MessageDirectory::kImagePath;
  if (url.starts_with(images)) {
    const auto bytes = directory_.image(std::string_view(url).substr(images.size()));
    return reply(bytes ? 200 : 404, bytes.value_or(""));
  }
  if (url.find("/newUnFetched/") != std::string::npos) {
    return reply(200, jsonText({{std::string(kHeaderListKey), Array{Value(message_.header)}}}));
  }
  if (url.find("/getmessage/") != std::string::npos) {
    return reply(200, jsonText(message_.full));
  }
  return reply(200, "{}");
}

}  // namespace kesu::dev
