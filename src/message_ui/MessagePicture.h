#pragma once

#include <kesu/graphics/Image.h>
#include <kesu/platform/Platform.h>

#include <functional>

#include "message_ui/Generation.h"
#include "messaging/InAppTemplateData.h"
#include "messaging/KesuImageCache.h"
#include "messaging/MessageImageLoader.h"

namespace kesu {

/// Returns the picture at this width in pixels; the picture itself when it is not wider, null for null. Slow: never on
/// the main thread. [imageWithImage:scaledToWidth:]
ImagePtr imageWithImage(const ImagePtr& image, int width);

/// Loads the picture of the message that is shown, and caches it. Main thread.
class MessagePicture {
 public:
  using Handler = std::function<void(const ImagePtr& shown)>;

  /// `cache` returns the cache, which is created with the first picture. The services must outlive this object and its
  /// loads.
  MessagePicture(Platform& platform, MessageImageLoader& loader, KesuImageCache& (*cache)())
      : platform_(platform), loader_(loader), cache_(cache) {}

  /// Fetches or decodes the picture that the message names or carries, scales it down on the image worker, and calls
  /// `handler` on the main thread; never when there is no picture, or after drop() or another load().
  void load(const InAppTemplateData& data, Handler handler);

  /// Drops what is still loading: it is cached, but not handed over.
  void drop() { generations_.advance(); }

 private:
  Platform& platform_;
  MessageImageLoader& loader_;
  KesuImageCache& (*cache_)();
  GenerationCounter generations_;
};

}  // namespace kesu
