#pragma once

#include <kesu/graphics/Image.h>
#include <kesu/platform/BackgroundQueue.h>
#include <kesu/platform/HttpClient.h>

#include <functional>
#include <string>

namespace kesu {

/// Loads the pictures of messages, from "http:", "https:" and "data:" URLs only: a message never reads a file of the
/// device. Pictures are decoded on the image worker. Any thread; the services must outlive the loader and its loads.
class MessageImageLoader {
 public:
  using Handler = std::function<void(ImagePtr image)>;

  /// The longest picture file that is accepted: a service's mistake must not exhaust a television's memory.
  static constexpr std::size_t kLimitBytes = std::size_t{8} * 1024 * 1024;

  MessageImageLoader(HttpClient& http, BackgroundQueue& imageWorker) : http_(http), imageWorker_(imageWorker) {}

  /// Loads the picture at `url` and calls `handler` with it ON THE IMAGE WORKER, once; with null when it cannot be
  /// fetched (any status but 2xx, too long, another scheme) or is no picture. Does not block.
  void load(const std::string& url, Handler handler);

 private:
  void decodeOnWorker(std::string bytes, Handler handler);

  HttpClient& http_;
  BackgroundQueue& imageWorker_;
};

}  // namespace kesu
