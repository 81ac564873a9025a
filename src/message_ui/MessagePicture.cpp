#include "message_ui/MessagePicture.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "drawing/Pictures.h"

namespace kesu {
namespace {

constexpr int kWidestPicture = 1160;  // The card's width in pixels on a screen with two pixels per point.

}  // namespace

ImagePtr imageWithImage(const ImagePtr& image, int width) {
  if (image == nullptr || image->width() <= width) {
    return image;
  }
  const double height = static_cast<double>(image->height()) * width / image->width();
  return scaledImage(*image, width, std::max(1, static_cast<int>(std::lround(height))));
}

void MessagePicture::load(const InAppTemplateData& data, Handler handler) {
  // Runs on the worker: scaling a picture takes tens of milliseconds, which the main thread cannot spare.
  auto onWorker = [this, &loop = platform_.mainLoop, data, asked = generations_.advance(),
                   handler = std::move(handler)](const ImagePtr& downloaded) {
    const ImagePtr shown = imageWithImage(downloaded != nullptr ? downloaded : data.base64Image(), kWidestPicture);
    loop.post([this, asked, handler, downloaded, shown, url = data.imageURL()] {
      if (downloaded != nullptr && asked.isAlive()) {  // Cached also when it is late; one within the message is not.
        cache_().cacheImage(downloaded, url);
      }
      if (shown != nullptr && asked.isCurrent()) {
        handler(shown);
      }
    });
  };
  if (data.imageURL().empty()) {
    platform_.imageWorker.post([onWorker = std::move(onWorker)] { onWorker(nullptr); });
  } else {
    data.downloadImageWithCompletionHandler(loader_, std::move(onWorker));
  }
}

}  // namespace kesu
