#include "messaging/MessageImageLoader.h"

#include <optional>
#include <utility>

#include "graphics/DataUrl.h"
#include "graphics/ImageDecoder.h"

namespace kesu {

void MessageImageLoader::load(const std::string& url, Handler handler) {
  if (isDataUrl(url)) {
    imageWorker_.post([url, handler = std::move(handler)] {
      const std::optional<std::string> bytes = dataOfUrl(url);
      handler(bytes ? decodeImage(*bytes).image : nullptr);
    });
    return;
  }
  HttpRequest request;
  request.url = url;
  request.replyLimit = kLimitBytes;
  http_.send(std::move(request), [this, handler = std::move(handler)](HttpReply reply) mutable {
    const bool isWhole = reply.error == HttpError::None && reply.status >= 200 && reply.status <= 299;
    decodeOnWorker(isWhole ? std::move(reply.body).value_or("") : std::string(), std::move(handler));
  });
}

void MessageImageLoader::decodeOnWorker(std::string bytes, Handler handler) {
  imageWorker_.post([bytes = std::move(bytes), handler = std::move(handler)] { handler(decodeImage(bytes).image); });
}

}  // namespace kesu
