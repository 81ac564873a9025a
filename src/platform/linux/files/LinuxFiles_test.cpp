#include "platform/linux/files/LinuxFiles.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <set>

#include "testing/ChildProcess.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

constexpr int kMountRefused = 77;

mode_t modeOf(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0 ? info.st_mode & 0777 : 0;
}

bool isThere(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0;
}

class LinuxFilesTest : public ::testing::Test {
 protected:
  testing::TemporaryDirectory home_;
  LinuxFiles files_{home_.path()};
};

TEST_F(LinuxFilesTest, WithoutHomeThereAreNoDirectories) {
  LinuxFiles files("");
  EXPECT_EQ(files.documentsDirectory() + files.cachesDirectory() + files.preferencesDirectory(), "");
}

TEST_F(LinuxFilesTest, FilesAndDirectoriesAreThePrivateOnesOfTheUser) {
  const std::string path = home_ / "a/b/file";
  ASSERT_TRUE(files_.writeAtomically(path, "x").ok());
  EXPECT_EQ(modeOf(path), 0600U);
  EXPECT_EQ(modeOf(home_ / "a"), 0700U);
  EXPECT_EQ(modeOf(home_ / "a/b"), 0700U);
  EXPECT_EQ(testing::namesIn(home_ / "a/b"), std::set<std::string>{"file"});
}

TEST_F(LinuxFilesTest, LinksAreNeverReadThroughNorWrittenThroughNorEntered) {
  home_.write("secret", "secret");
  ASSERT_TRUE(files_.createDirectories(home_ / "tree").ok());
  ASSERT_EQ(::symlink((home_ / "secret").c_str(), (home_ / "tree/link").c_str()), 0);
  ASSERT_EQ(::symlink(home_.path().c_str(), (home_ / "tree/up").c_str()), 0);
  EXPECT_EQ(files_.read(home_ / "tree/link", 100).status, FileStatus::NotRegular);
  std::set<std::string> names;
  files_.enumerate(home_ / "tree", [&](const DirectoryEntry& entry) {
    EXPECT_FALSE(entry.isRegularFile);
    return names.insert(entry.name).second;
  });
  EXPECT_EQ(names, (std::set<std::string>{"link", "up"}));
  EXPECT_TRUE(files_.writeAtomically(home_ / "tree/link", "new").ok());
  EXPECT_EQ(home_.read("secret"), "secret");
  EXPECT_EQ(home_.read("tree/link"), "new");
  EXPECT_TRUE(files_.remove(home_ / "tree/up").ok());
  EXPECT_TRUE(isThere(home_ / "secret"));
}

TEST_F(LinuxFilesTest, DevicesAndSocketsAreNotRegular) {
  sockaddr_un address{AF_UNIX, {}};
  (home_ / "socket").copy(address.sun_path, sizeof(address.sun_path) - 1);
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
  EXPECT_EQ(files_.read(home_ / "socket", 100).status, FileStatus::NotRegular);
  EXPECT_EQ(files_.read("/dev/zero", 100).status, FileStatus::NotRegular);
  ::close(socket);
}

TEST_F(LinuxFilesTest, AFileWhoseSizeIsNotKnownIsReadToItsEnd) {
  const std::string path = "/proc/" + std::to_string(::getpid()) + "/status";
  const FileContent content = files_.read(path, 1 << 20);
  EXPECT_TRUE(content.ok());
  EXPECT_NE(content.bytes.find("VmLck"), std::string::npos);
  EXPECT_EQ(files_.read(path, 10).status, FileStatus::TooLarge);
}

TEST_F(LinuxFilesTest, PathsWithANulByteAreRefused) {
  home_.write("file", "x");
  const std::string path = (home_ / "file") + std::string("\0.plist", 7);
  EXPECT_EQ(files_.read(path, 10).status, FileStatus::OtherFailure);
  EXPECT_EQ(files_.writeAtomically(path, "y").status, FileStatus::OtherFailure);
  EXPECT_EQ(files_.remove(path).status, FileStatus::OtherFailure);
  EXPECT_EQ(home_.read("file"), "x");
}

TEST_F(LinuxFilesTest, StaleTemporariesOfDeadProcessesGoAtTheFirstWrite) {
  const timespec longAgo[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
  for (const char* name : {".kesu-1-0.tmp", ".kesu-1-0.txt", ".other.tmp", "kesu-1-0.tmp"}) {
    home_.write(name, "x");
    ASSERT_EQ(::utimensat(AT_FDCWD, (home_ / name).c_str(), longAgo, 0), 0);
  }
  home_.write(".kesu-2-0.tmp", "written by another process just now");
  ASSERT_TRUE(files_.writeAtomically(home_ / "file", "x").ok());
  EXPECT_EQ(testing::namesIn(home_.path()),
            (std::set<std::string>{".kesu-1-0.txt", ".kesu-2-0.tmp", ".other.tmp", "file", "kesu-1-0.tmp"}));
}

TEST_F(LinuxFilesTest, SkipsATemporaryNameThatExists) {
  const std::string taken = ".kesu-" + std::to_string(::getpid()) + "-0.tmp";
  home_.write("target", "target");
  ASSERT_EQ(::symlink((home_ / "target").c_str(), (home_ / taken).c_str()), 0);
  home_.write("file", "only what replaces a file has a temporary name");
  EXPECT_TRUE(files_.writeAtomically(home_ / "file", "x").ok());
  EXPECT_EQ(home_.read("target"), "target");
  EXPECT_EQ(home_.read("file"), "x");
}

TEST_F(LinuxFilesTest, AWalkEndsAtTheDepthLimit) {
  std::string path = home_.path();
  for (int i = 0; i < LinuxFiles::kDepthLimit + 10; ++i) {
    path += "/d";
  }
  ASSERT_TRUE(files_.createDirectories(path).ok());
  int visits = 0;
  files_.enumerate(home_.path(), [&](const DirectoryEntry&) { return ++visits > 0; });
  EXPECT_EQ(visits, LinuxFiles::kDepthLimit + 1);
}

TEST_F(LinuxFilesTest, WithoutPermissionTheAnswerIsNotAllowed) {
  home_.write("private", "x");
  ASSERT_EQ(::chmod((home_ / "private").c_str(), 0), 0);
  ASSERT_EQ(::chmod(home_.path().c_str(), 0555), 0);
  const auto verdict = testing::runUnprivileged([&] {
    LinuxFiles files(home_.path());
    return (files.read(home_ / "private", 10).status == FileStatus::NotAllowed ? 0 : 1) +
           (files.writeAtomically(home_ / "new", "x").status == FileStatus::NotAllowed ? 0 : 2) +
           (files.createDirectories(home_ / "d/e").status == FileStatus::NotAllowed ? 0 : 4);
  });
  ::chmod(home_.path().c_str(), 0700);
  EXPECT_EQ(verdict, 0);
}

TEST_F(LinuxFilesTest, AFullDiskKeepsTheOldContentAndNoTemporary) {
  const auto verdict = testing::runInChild([&] {
    if (!testing::mountSmallDisk(home_.path().c_str(), "64k")) {
      return kMountRefused;
    }
    LinuxFiles files(home_.path());
    const bool wroteOld = files.writeAtomically(home_ / "file", "old").ok();
    const FileResult full = files.writeAtomically(home_ / "file", std::string(100'000, 'x'));
    return (wroteOld ? 0 : 1) + (full.status == FileStatus::NoSpace ? 0 : 2) + (home_.read("file") == "old" ? 0 : 4) +
           (testing::namesIn(home_.path()) == std::set<std::string>{"file"} ? 0 : 8);
  });
  if (verdict == kMountRefused) {
    GTEST_SKIP() << "this process may not mount a file system";
  }
  EXPECT_EQ(verdict, 0);
}

TEST_F(LinuxFilesTest, AForkedChildTouchesNothingAndNeverWaits) {
  home_.write("file", "x");
  const auto verdict = testing::runInChild([&] {
    files_.enumerate(home_.path(), [](const DirectoryEntry&) -> bool { ::_exit(64); });
    return (files_.documentsDirectory().empty() ? 0 : 1) + (files_.writeAtomically(home_ / "new", "x").ok() ? 2 : 0) +
           (files_.remove(home_ / "file").ok() ? 4 : 0) + (files_.read(home_ / "file", 10).ok() ? 8 : 0) +
           (files_.createDirectories(home_ / "a").ok() ? 16 : 0) + (files_.tryLock(home_.path()) ? 32 : 0);
  });
  EXPECT_EQ(verdict, 0);
  EXPECT_EQ(testing::namesIn(home_.path()), std::set<std::string>{"file"});
}

TEST_F(LinuxFilesTest, ALockHoldsAgainstOtherProcessesUntilItsOwnerEnds) {
  const std::string path = home_.path();
  const auto lockElsewhere = [&path] {
    return testing::runInChild([&path] { return LinuxFiles("").tryLock(path) ? 1 : 0; });
  };
  auto lock = files_.tryLock(path);
  ASSERT_TRUE(lock);
  EXPECT_EQ(lockElsewhere(), 0);
  testing::runInChild([&lock] { return lock.reset(), 0; });
  EXPECT_EQ(lockElsewhere(), 0) << "a forked child's copy releases nothing";
  lock.reset();
  EXPECT_EQ(lockElsewhere(), 1);
  EXPECT_TRUE(files_.tryLock(path)) << "the death of a process releases its lock";
}

}  // namespace
}  // namespace kesu
