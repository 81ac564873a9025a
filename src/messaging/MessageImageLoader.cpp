#include "messaging/MessageImageLoader.h"

#include <optional>
#include <utility>

#include "drawing/DataUrl.h"
#include "drawing/Pictures.h"

namespace kesu {

void MessageImageLoader::load(const std::string& url, Handler handler) {
  if (isDataUrl(url)) {  // On the worker as well: base64 of a large picture takes time.
    imageWorker_.post([url, handler = std::move(handler)] {
      const std::optional<std::string> bytes = dataOfUrl(url);
      handler(bytes ? decodeImage(*bytes).image : nullptr);
    });
    return;
  }
  HttpRequest request;
  request.url = url;
  request.replyLimit = kLimitBytes;  // The transfer is cut off there, so that no memory is used up before.
  http_.send(std::move(request), [this, handler = std::move(handler)](HttpReply reply) mutable {
    // An error beside a status, as after a lost connection, leaves half a picture.
    const bool isWhole = reply.error == HttpError::None && reply.status >= 200 && reply.status <= 299;
    decodeOnWorker(isWhole ? std::move(reply.body).value_or("") : std::string(), std::move(handler));
  });
}

void MessageImageLoader::decodeOnWorker(std::string bytes, Handler handler) {
  imageWorker_.post([bytes = std::move(bytes), handler = std::move(handler)] { handler(decodeImage(bytes).image); });
}

}  // namespace kesu
