#include "platform/linux/files/HomeFolders.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>

#include "platform/ServiceLog.h"
#include "platform/linux/files/LinuxFiles.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

namespace fs = std::filesystem;

int linesTold = 0;

unsigned modeOfEntry(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 07777U : 0U;
}

class LinkedHomeTest : public ::testing::Test {
 protected:
  LinkedHomeTest() {
    linesTold = 0;
    setServiceLogHandler([](int level, const std::string&) { linesTold += level == 2 ? 1 : 0; });
  }
  ~LinkedHomeTest() override { setServiceLogHandler(nullptr); }

  void link(const std::string& name, const std::string& target) {
    fs::create_directories(fs::path(root_ / name).parent_path());
    fs::create_directory_symlink(target, root_ / name);
  }

  /// What one walk over the undelivered records finds.
  std::multiset<std::string> documents() {
    std::multiset<std::string> contents;
    files_.enumerate(files_.documentsDirectory(), [&](const DirectoryEntry& entry) {
      contents.insert(files_.read(entry.path, 100).bytes);
      return true;
    });
    return contents;
  }

  std::string real(const std::string& name) { return fs::canonical(root_ / name); }

  testing::TemporaryDirectory root_;
  LinuxFiles files_{root_ / "home"};
};

TEST_F(LinkedHomeTest, EveryOperationGoesToTheSamePlaceBehindALink) {
  for (const char* linked :
       {"home", "home/Documents", "home/Library", "home/Library/Caches", "home/Library/Preferences"}) {
    testing::TemporaryDirectory root;
    fs::create_directories(root / "target");
    fs::create_directories(fs::path(root / linked).parent_path());
    fs::create_directory_symlink(root / "target", root / linked);
    LinuxFiles files(root / "home");
    for (const std::string& directory :
         {files.documentsDirectory(), files.cachesDirectory(), files.preferencesDirectory()}) {
      EXPECT_TRUE(files.writeAtomically(directory + "/file", "x").ok()) << linked << ' ' << directory;
    }
    EXPECT_FALSE(fs::is_empty(root / "target")) << linked;
    for (const std::string& directory :
         {files.documentsDirectory(), files.cachesDirectory(), files.preferencesDirectory()}) {
      EXPECT_EQ(directory, fs::canonical(directory).string()) << linked;
      int found = 0;
      files.enumerate(directory, [&](const DirectoryEntry& entry) {
        found += files.read(entry.path, 10).bytes == "x" && files.remove(entry.path).ok() ? 1 : 0;
        return true;
      });
      EXPECT_EQ(found, 1) << linked << ' ' << directory;
    }
  }
}

TEST_F(LinkedHomeTest, AHomeMayAppearLaterAndStaysWhereItWasFound) {
  EXPECT_EQ(files_.documentsDirectory(), root_ / "home/Documents");
  EXPECT_EQ(files_.outboxDirectory(), root_ / "home/Library/Outbox");
  fs::create_directories(root_ / "first/Documents");
  fs::create_directories(root_ / "second/Documents");
  link("home", root_ / "first");
  EXPECT_EQ(files_.documentsDirectory(), real("first/Documents"));
  fs::remove(root_ / "home");
  link("home", root_ / "second");
  EXPECT_TRUE(files_.writeAtomically(files_.preferencesDirectory() + "/file", "x").ok());
  EXPECT_EQ(root_.read("first/Library/Preferences/file"), "x") << "all directories lie below one home";
  EXPECT_EQ(files_.outboxDirectory(), real("first/Library") + "/Outbox");
  EXPECT_TRUE(fs::is_empty(root_ / "second/Documents"));
}

TEST_F(LinkedHomeTest, ALinkToNoDirectoryIsRefusedAndTold) {
  root_.write("file", "host's");
  for (const std::string& target : {root_ / "nowhere", root_ / "home/Documents", root_ / "file"}) {
    for (const char* linked : {"home/Documents", "home"}) {
      fs::remove_all(root_ / "home");
      link(linked, target);
      LinuxFiles files(root_ / "home");
      linesTold = 0;
      for (int write = 0; write < 2; ++write) {
        const FileResult result = files.writeAtomically(files.documentsDirectory() + "/a", "x");
        EXPECT_FALSE(result.ok() || result.reason.empty()) << linked << " to " << target;
      }
      EXPECT_EQ(linesTold, 1) << linked << " to " << target;
      EXPECT_FALSE(fs::exists(root_ / "nowhere"));
    }
  }
  EXPECT_EQ(root_.read("file"), "host's");
}

TEST_F(LinkedHomeTest, NoLinkIsFollowedBelowTheDirectories) {
  fs::create_directories(root_ / "elsewhere");
  root_.write("elsewhere/file", "host's");
  EXPECT_TRUE(files_.writeAtomically(files_.documentsDirectory() + "/a", "ours").ok());
  link("home/Library/Caches/ImageCache", root_ / "elsewhere");
  link("home/Documents/sub", root_ / "elsewhere");
  for (const std::string& place : {files_.cachesDirectory() + "/ImageCache", files_.documentsDirectory() + "/sub"}) {
    EXPECT_FALSE(files_.writeAtomically(place + "/file", "x").ok());
    EXPECT_FALSE(files_.read(place + "/file", 100).ok());
    EXPECT_FALSE(files_.remove(place + "/file").ok());
  }
  EXPECT_EQ(documents(), (std::multiset<std::string>{"ours", ""}));
  EXPECT_EQ(root_.read("elsewhere/file"), "host's");
  fs::remove_all(root_ / "home/Documents");
  link("home/Documents", root_ / "elsewhere");
  EXPECT_FALSE(files_.writeAtomically(files_.documentsDirectory() + "/a", "x").ok()) << "found before it was a link";
  EXPECT_TRUE(documents().empty());
}

TEST_F(LinkedHomeTest, TightensWhatIsOursAndNothingElse) {
  const struct {
    const char* path;
    unsigned before;
    unsigned after;
  } rows[] = {{"home/Library/Preferences", 0755, 0700},
              {"home/Library/Preferences/kesu.defaults", 0644, 0600},
              {"home/Library/Preferences/kesu.defaults-wal", 0444, 0400},
              {"home/Library/Preferences/kesu.defaults.corrupt", 0666, 0600},
              {"home/Library/Preferences/other", 0644, 0644},
              {"home/Library/Caches/ImageCache", 02775, 02700},
              {"home/Library/Caches", 0755, 0755},
              {"home/Documents/c1-1.kesuCache", 0664, 0600},
              {"home/Documents/c1-2.kesuCache", 0400, 0400},
              {"home/Documents/letter", 0644, 0644},
              {"home/Documents", 0755, 0755},
              {"home/linked", 0644, 0644},
              {"home", 0755, 0755}};
  for (const char* directory : {"home/Library/Preferences", "home/Library/Caches/ImageCache", "home/Documents"}) {
    fs::create_directories(root_ / directory);
  }
  for (const auto& row : rows) {
    if (!fs::exists(root_ / row.path)) {
      root_.write(row.path, "x");
    }
    ASSERT_EQ(::chmod((root_ / row.path).c_str(), row.before), 0) << row.path;
  }
  link("home/Library/Preferences/kesu.defaults-shm", root_ / "home/linked");
  files_.preferencesDirectory();
  files_.cachesDirectory();
  EXPECT_EQ(documents().size(), 3U);
  for (const auto& row : rows) {
    EXPECT_EQ(modeOfEntry(root_ / row.path), row.after) << row.path;
  }
}

}  // namespace
}  // namespace kesu
