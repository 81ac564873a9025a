#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/graphics/Image.h>
#include <kesu/platform/BackgroundQueue.h>
#include <kesu/platform/Files.h>
#include <kesu/platform/NotificationCenter.h>

#include <memory>
#include <string>
#include <string_view>

namespace kesu {

/// Pictures of messages by the text of their URL: in memory, and as PNG files in "<caches directory>/ImageCache".
/// Without a caches directory no file is touched.
///
/// On disk nothing is ever deleted. In memory the pictures used last stay, up to kMemoryLimitBytes; a memory warning
/// empties it and takes back the files that are not begun, so that a picture cached just before may be in neither
/// place. Any thread. The services must outlive the cache; work that is queued may outlive it.
class KesuImageCache {
 public:
  /// Pixels kept in memory at most. The picture that was cached or read last is kept in any case.
  static constexpr std::size_t kMemoryLimitBytes = std::size_t{24} * 1024 * 1024;

  /// Has the worker make the directory (a failure is ignored) and listens for memory warnings.
  KesuImageCache(Files& files, BackgroundQueue& imageWorker, NotificationCenter& notifications);
  ~KesuImageCache();

  KesuImageCache(const KesuImageCache&) = delete;
  KesuImageCache& operator=(const KesuImageCache&) = delete;

  /// [cacheImage:forURLString:] Keeps the picture in memory at once and has the image worker encode and write it.
  /// Nothing happens for a null picture or a missing URL text.
  void cacheImage(ImagePtr image, const Object& urlString);

  /// [imageForURLString:] The picture in memory, else the one on disk, which is then kept in memory; null without
  /// either. Reads and decodes on the caller's thread: never on the main one.
  ImagePtr imageForURLString(const Object& urlString);

  /// [storeImageToDiskWith:] Writes the PNG file of a URL text, replacing what is there. Failures are ignored. Slow:
  /// never on the main thread.
  void storeImageToDiskWith(std::string_view urlString, std::string_view png);

  /// [cacheDirPathForKey:] The file of a URL text: the MD5 digest of its bytes, 32 lower-case hexadecimal digits.
  std::string cacheDirPathForKey(std::string_view urlString) const;

  /// [clearMemory] Takes back the writes that have not begun and empties the memory level. Files stay.
  void clearMemory();

 private:
  struct Shared;

  static void store(Shared& shared, std::string_view urlString, std::string_view png);

  std::shared_ptr<Shared> shared_;  // Queued writes hold it as well.
  BackgroundQueue& imageWorker_;
  NotificationCenter& notifications_;
  NotificationCenter::Token observer_ = 0;
};

}  // namespace kesu
