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
/// empties it and cancels the writes that have not begun, so that a picture cached just before may be in neither place.
/// Any thread. The services must outlive the cache; writes that are queued may outlive it.
class KesuImageCache {
 public:
  /// The most that is kept in memory, in bytes of pixels: three pictures of 1920 x 1080. The one that was cached or
  /// read last is kept in any case.
  static constexpr std::size_t kMemoryLimitBytes = std::size_t{24} * 1024 * 1024;

  /// Creates the directory on the worker (a failure is ignored) and observes memory warnings.
  KesuImageCache(Files& files, BackgroundQueue& imageWorker, NotificationCenter& notifications);
  ~KesuImageCache();

  KesuImageCache(const KesuImageCache&) = delete;
  KesuImageCache& operator=(const KesuImageCache&) = delete;

  /// Keeps the picture in memory at once; the image worker encodes and writes it. Nothing happens for a null picture or
  /// a missing URL text. [cacheImage:forURLString:]
  void cacheImage(ImagePtr image, const Object& urlString);

  /// Cancels the writes that have not begun and empties the memory level. Files stay. [clearMemory]
  void clearMemory();

  // Owed to the agreed interface; no caller inside the library, which never reads what it has cached.

  /// Returns the picture in memory, else the one on disk, which is then kept in memory; null without either. Reads and
  /// decodes on the caller's thread: never on the main one. [imageForURLString:]
  ImagePtr imageForURLString(const Object& urlString);

  /// Writes the PNG file of a URL text, replacing an earlier one. Failures are ignored. Slow: never on the main thread.
  /// [storeImageToDiskWith:]
  void storeImageToDiskWith(std::string_view urlString, std::string_view png);

  /// Returns the path of a URL text's file: the MD5 digest of its bytes, 32 lower-case hexadecimal digits.
  /// [cacheDirPathForKey:]
  std::string cacheDirPathForKey(std::string_view urlString) const;

 private:
  struct Shared;

  static void store(Shared& shared, std::string_view urlString, std::string_view png);

  std::shared_ptr<Shared> shared_;  // Shared with queued writes.
  BackgroundQueue& imageWorker_;
  NotificationCenter& notifications_;
  NotificationCenter::Token observer_ = 0;
};

}  // namespace kesu
