#include "messaging/KesuImageCache.h"

#include <gtest/gtest.h>
#include <kesu/platform/ApplicationNotifications.h>

#include "testing/FakeFiles.h"
#include "testing/ManualBackgroundQueue.h"

namespace kesu {
namespace {

constexpr const char* kFileOfAbc = "/home/Library/Caches/ImageCache/900150983cd24fb0d6963f7d28e17f72";

class ImageCacheTest : public ::testing::Test {
 protected:
  static ImagePtr picture(int side = 1) {
    const auto pixels = static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
    return std::make_shared<Image>(side, side, std::vector<std::uint32_t>(pixels, 0xFF123456));
  }

  testing::FakeFiles files;
  testing::ManualBackgroundQueue worker;
  NotificationCenter notifications;
  KesuImageCache cache{files, worker, notifications};
};

TEST_F(ImageCacheTest, KeepsPicturesInMemoryAtOnceAndOnDiskByTheirDigest) {
  const ImagePtr image = picture();
  cache.cacheImage(image, "abc");
  EXPECT_EQ(cache.imageForURLString("abc"), image);
  EXPECT_TRUE(files.paths().empty()) << "nothing is written on the caller's thread";
  worker.runAll();
  EXPECT_EQ(files.paths(), std::vector<std::string>{kFileOfAbc});
  EXPECT_EQ(cache.cacheDirPathForKey("abc"), kFileOfAbc);
  EXPECT_NE(cache.cacheDirPathForKey("ABC"), kFileOfAbc);
}

TEST_F(ImageCacheTest, MakesItsDirectoryAtTheStart) {
  worker.runAll();
  std::vector<std::string> names;
  files.enumerate(files.cachesDirectory(), [&names](const DirectoryEntry& entry) {
    names.push_back(entry.name);
    return true;
  });
  EXPECT_EQ(names, std::vector<std::string>{"ImageCache"});
}

TEST_F(ImageCacheTest, ReadsFromDiskAfterAMemoryWarningAndKeepsItAgain) {
  cache.cacheImage(picture(), "abc");
  worker.runAll();
  notifications.post(kApplicationDidReceiveMemoryWarningNotification);
  const ImagePtr read = cache.imageForURLString("abc");
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->pixels()[0], 0xFF123456U);
  EXPECT_EQ(cache.imageForURLString("abc"), read);
  EXPECT_EQ(files.readCount(kFileOfAbc), 1);
}

TEST_F(ImageCacheTest, AMemoryWarningTakesBackWritesThatHaveNotBegun) {
  cache.cacheImage(picture(), "abc");
  cache.clearMemory();
  cache.cacheImage(picture(), "later");
  worker.runAll();
  EXPECT_EQ(files.paths(), std::vector<std::string>{cache.cacheDirPathForKey("later")});
  EXPECT_EQ(cache.imageForURLString("abc"), nullptr);
}

TEST_F(ImageCacheTest, StoresNothingWithoutPictureOrUrl) {
  cache.cacheImage(nullptr, "abc");
  cache.cacheImage(picture(), nil);
  worker.runAll();
  EXPECT_TRUE(files.paths().empty());
  EXPECT_EQ(cache.imageForURLString(nil), nullptr);
  EXPECT_EQ(cache.imageForURLString("abc"), nullptr);
}

TEST_F(ImageCacheTest, IgnoresAFileThatIsNoPicture) {
  cache.storeImageToDiskWith("abc", "no picture");
  EXPECT_EQ(cache.imageForURLString("abc"), nullptr);
}

TEST_F(ImageCacheTest, ForgetsThePicturesUsedLeastWhenMemoryIsFull) {
  const ImagePtr large = picture(2000);  // 16 MB
  const ImagePtr small = picture(1100);  // 4.8 MB: one fits beside the large one
  cache.cacheImage(small, "used");
  cache.cacheImage(small, "idle");
  EXPECT_EQ(cache.imageForURLString("used"), small);
  cache.cacheImage(large, "large");
  EXPECT_EQ(cache.imageForURLString("idle"), nullptr);
  EXPECT_EQ(cache.imageForURLString("used"), small);
  EXPECT_EQ(cache.imageForURLString("large"), large);
  cache.cacheImage(large, "large2");
  EXPECT_EQ(cache.imageForURLString("large"), nullptr);
  EXPECT_EQ(cache.imageForURLString("large2"), large) << "the last one stays in any case";
}

/// The files of a system that names no home.
class HomelessFiles final : public testing::FakeFiles {
 public:
  std::string cachesDirectory() override { return ""; }
};

TEST_F(ImageCacheTest, StaysInMemoryWithoutACachesDirectory) {
  HomelessFiles homeless;
  KesuImageCache here(homeless, worker, notifications);
  const ImagePtr image = picture();
  here.cacheImage(image, "abc");
  worker.runAll();
  EXPECT_EQ(here.imageForURLString("abc"), image);
  here.clearMemory();
  EXPECT_EQ(here.imageForURLString("abc"), nullptr);
  int atTheRoot = 0;
  homeless.enumerate("", [&atTheRoot](const DirectoryEntry&) { return ++atTheRoot > 0; });
  EXPECT_EQ(atTheRoot, 0);
}

TEST_F(ImageCacheTest, QueuedWritesOutliveTheCache) {
  { KesuImageCache(files, worker, notifications).cacheImage(picture(), "abc"); }
  notifications.post(kApplicationDidReceiveMemoryWarningNotification);
  worker.runAll();
  EXPECT_EQ(files.paths(), std::vector<std::string>{kFileOfAbc});
}

}  // namespace
}  // namespace kesu
