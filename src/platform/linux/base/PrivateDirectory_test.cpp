#include "platform/linux/base/PrivateDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "testing/ChildProcess.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

class PrivateDirectoryTest : public ::testing::Test {
 protected:
  unsigned mode(const std::string& name) {
    struct stat info {};
    return ::stat((root_ / name).c_str(), &info) == 0 ? info.st_mode & 07777U : 0U;
  }

  testing::TemporaryDirectory root_;
};

TEST_F(PrivateDirectoryTest, MakesWhatIsMissingForThisUserAlone) {
  EXPECT_EQ(makePrivateDirectory(root_ / "a/b/c"), 0);
  EXPECT_EQ(makePrivateDirectory(root_ / "a/b/c"), 0);
  EXPECT_EQ(mode("a") | mode("a/b") | mode("a/b/c"), 0700U);
}

TEST_F(PrivateDirectoryTest, TightensTheLastDirectoryOnlyAndNeverWidens) {
  std::filesystem::create_directories(root_ / "open/open");
  ASSERT_EQ(::chmod((root_ / "open").c_str(), 0755), 0);
  ASSERT_EQ(::chmod((root_ / "open/open").c_str(), 0577), 0);
  EXPECT_EQ(makePrivateDirectory(root_ / "open/open"), 0);
  EXPECT_EQ(mode("open"), 0755U);
  EXPECT_EQ(mode("open/open"), 0500U);
}

TEST_F(PrivateDirectoryTest, TightensNothingBehindALink) {
  std::filesystem::create_directories(root_ / "photos");
  ASSERT_EQ(::chmod((root_ / "photos").c_str(), 0755), 0);
  ASSERT_EQ(::symlink("photos", (root_ / "link").c_str()), 0);
  EXPECT_EQ(makePrivateDirectory(root_ / "link"), 0);
  EXPECT_EQ(mode("photos"), 0755U);
}

TEST_F(PrivateDirectoryTest, LeavesTheDirectoriesOfOthersAsTheyAre) {
  ASSERT_EQ(::chmod(root_.path().c_str(), 0755), 0);
  if (::geteuid() == 0) {
    EXPECT_EQ(testing::runUnprivileged([this] { return makePrivateDirectory(root_.path()); }), 0);
    ASSERT_EQ(::chown(root_.path().c_str(), 65534, 65534), 0);
  }
  EXPECT_EQ(makePrivateDirectory(::geteuid() == 0 ? root_.path() : std::string("/")), 0);
  EXPECT_EQ(mode(""), 0755U);
}

TEST_F(PrivateDirectoryTest, NamesWhatIsInTheWay) {
  root_.write("file", "x");
  ASSERT_EQ(::symlink("nowhere", (root_ / "link").c_str()), 0);
  ASSERT_EQ(::symlink("loop", (root_ / "loop").c_str()), 0);
  for (const char* name : {"file", "file/below", "link", "link/below", "loop"}) {
    EXPECT_EQ(makePrivateDirectory(root_ / name), ENOTDIR) << name;
  }
  EXPECT_EQ(makePrivateDirectory(root_ / "loop/below"), ELOOP);
  EXPECT_EQ(makePrivateDirectory(""), ENOENT);
}

}  // namespace
}  // namespace kesu
