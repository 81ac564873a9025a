#include "messaging/KesuImageCache.h"

#include <kesu/platform/ApplicationNotifications.h>

#include <algorithm>
#include <cstdint>
#include <list>
#include <utility>

#include "drawing/Pictures.h"
#include "foundation/Digest.h"
#include "foundation/Mutex.h"

namespace kesu {
namespace {

// Our own files are stored without compression: the largest picture that is decoded, with room for its frame.
constexpr ImageLimits kFileLimits{.inputBytes = std::size_t{80} * 1024 * 1024};

}  // namespace

// Shared with queued writes, which may outlive the cache.
struct KesuImageCache::Shared {
  explicit Shared(Files& fileService) : files(fileService), directory(files.cachesDirectory() + "/ImageCache") {}

  struct Entry {
    std::string key;
    ImagePtr image;
  };

  std::uint64_t keep(std::string_view key, ImagePtr image) KESU_EXCLUDES(mutex);
  ImagePtr find(std::string_view key) KESU_EXCLUDES(mutex);
  void clear() KESU_EXCLUDES(mutex) {
    const MutexLock lock(mutex);
    entries.clear();
    ++generation;
  }
  bool isCurrent(std::uint64_t asked) KESU_EXCLUDES(mutex) {
    const MutexLock lock(mutex);
    return asked == generation;
  }
  void trim() KESU_REQUIRES(mutex);
  std::string path(std::string_view key) const { return directory + "/" + hexLower(md5(key)); }
  bool hasDirectory() const { return !files.cachesDirectory().empty(); }

  Files& files;
  const std::string directory;
  Mutex mutex;
  std::list<Entry> entries KESU_GUARDED_BY(mutex);  // Last used first.
  std::uint64_t generation KESU_GUARDED_BY(mutex) = 0;
};

// Returns the generation, which a memory warning advances.
std::uint64_t KesuImageCache::Shared::keep(std::string_view key, ImagePtr image) {
  const MutexLock lock(mutex);
  std::erase_if(entries, [key](const Entry& entry) { return entry.key == key; });
  entries.push_front({std::string(key), std::move(image)});
  trim();
  return generation;
}

void KesuImageCache::Shared::trim() {
  std::size_t bytes = 0;
  auto entry = entries.begin();
  // The first entry stays whatever its size: it is being shown.
  while (entry != entries.end() && (bytes == 0 || bytes + entry->image->byteCount() <= kMemoryLimitBytes)) {
    bytes += entry->image->byteCount();
    ++entry;
  }
  entries.erase(entry, entries.end());
}

ImagePtr KesuImageCache::Shared::find(std::string_view key) {
  const MutexLock lock(mutex);
  const auto found =
      std::find_if(entries.begin(), entries.end(), [key](const Entry& entry) { return entry.key == key; });
  if (found == entries.end()) {
    return nullptr;
  }
  entries.splice(entries.begin(), entries, found);
  return found->image;
}

KesuImageCache::KesuImageCache(Files& files, BackgroundQueue& imageWorker, NotificationCenter& notifications)
    : shared_(std::make_shared<Shared>(files)), imageWorker_(imageWorker), notifications_(notifications) {
  imageWorker_.post([shared = shared_] {
    if (shared->hasDirectory()) {
      shared->files.createDirectories(shared->directory);
    }
  });
  observer_ = notifications.addObserver(kApplicationDidReceiveMemoryWarningNotification, nullptr,
                                        [this](const Notification&) { clearMemory(); });
}

KesuImageCache::~KesuImageCache() {
  notifications_.removeObserver(observer_);
}

void KesuImageCache::cacheImage(ImagePtr image, const Object& urlString) {
  const std::string* key = urlString ? urlString->text() : nullptr;
  if (image == nullptr || key == nullptr) {
    return;
  }
  const std::uint64_t generation = shared_->keep(*key, image);
  imageWorker_.post([shared = shared_, image = std::move(image), key = *key, generation] {
    if (!shared->isCurrent(generation)) {  // A memory warning has cancelled it.
      return;
    }
    if (const std::optional<std::string> png = encodePng(*image)) {
      store(*shared, key, *png);
    }
  });
}

ImagePtr KesuImageCache::imageForURLString(const Object& urlString) {
  const std::string* key = urlString ? urlString->text() : nullptr;
  if (key == nullptr) {
    return nullptr;
  }
  if (ImagePtr kept = shared_->find(*key)) {
    return kept;
  }
  if (!shared_->hasDirectory()) {
    return nullptr;
  }
  const FileContent file = shared_->files.read(shared_->path(*key), kFileLimits.inputBytes);
  ImagePtr image = file.ok() ? decodeImage(file.bytes, kFileLimits).image : nullptr;
  if (image != nullptr) {
    shared_->keep(*key, image);
  }
  return image;
}

void KesuImageCache::store(Shared& shared, std::string_view urlString, std::string_view png) {
  if (shared.hasDirectory()) {
    shared.files.writeAtomically(shared.path(urlString), png);
  }
}

void KesuImageCache::storeImageToDiskWith(std::string_view urlString, std::string_view png) {
  store(*shared_, urlString, png);
}

std::string KesuImageCache::cacheDirPathForKey(std::string_view urlString) const {
  return shared_->path(urlString);
}

void KesuImageCache::clearMemory() {
  shared_->clear();
}

}  // namespace kesu
