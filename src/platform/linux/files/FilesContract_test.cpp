#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/linux/files/LinuxFiles.h"
#include "testing/FakeFiles.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

class FilesContractTest : public ::testing::TestWithParam<std::string> {
 protected:
  Files& files() { return isFake() ? static_cast<Files&>(fake_) : linux_; }
  std::string path(const std::string& name) { return files().documentsDirectory() + "/" + name; }
  void write(const std::string& name, std::string_view bytes = "x") {
    EXPECT_TRUE(files().writeAtomically(path(name), bytes).ok()) << name;
  }
  void addFifo(const std::string& name) {
    if (isFake()) {
      fake_.addSpecial(path(name));
    } else {
      EXPECT_EQ(::mkfifo(path(name).c_str(), 0600), 0);
    }
  }
  std::vector<std::string> listed() {
    std::vector<std::string> names;
    files().enumerate(files().documentsDirectory(), [&](const DirectoryEntry& entry) {
      EXPECT_TRUE(entry.path.ends_with("/" + entry.name));
      names.push_back(entry.path.substr(path("").size()) + (entry.isRegularFile ? "" : "/"));
      return true;
    });
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  static bool isFake() { return GetParam() == "Fake"; }

  testing::TemporaryDirectory directory_;
  LinuxFiles linux_{directory_ / "home"};
  testing::FakeFiles fake_;
};

INSTANTIATE_TEST_SUITE_P(All, FilesContractTest, ::testing::Values("Linux", "Fake"),
                         [](const auto& instance) { return instance.param; });

TEST_P(FilesContractTest, DirectoriesLieBelowTheHomeAndDoNotExistYet) {
  EXPECT_TRUE(files().documentsDirectory().ends_with("/Documents"));
  EXPECT_TRUE(files().cachesDirectory().ends_with("/Library/Caches"));
  EXPECT_TRUE(files().preferencesDirectory().ends_with("/Library/Preferences"));
  EXPECT_TRUE(listed().empty());
  EXPECT_EQ(files().read(path("a"), 10).status, FileStatus::NotFound);
  EXPECT_EQ(files().remove(path("a")).status, FileStatus::NotFound);
}

TEST_P(FilesContractTest, WritesReplaceTheWholeContent) {
  for (const std::string& bytes : {std::string(100'000, 'l'), std::string("a\0b", 3), std::string()}) {
    write("deep/er/file", bytes);
    const FileContent content = files().read(path("deep/er/file"), 100'000);
    EXPECT_TRUE(content.ok());
    EXPECT_EQ(content.bytes, bytes);
  }
  EXPECT_EQ(listed(), (std::vector<std::string>{"deep/", "deep/er/", "deep/er/file"}));
}

TEST_P(FilesContractTest, ReadsUpToTheLimit) {
  write("file", "12345");
  EXPECT_TRUE(files().read(path("file"), 5).ok());
  EXPECT_EQ(files().read(path("file"), 4).status, FileStatus::TooLarge);
  EXPECT_TRUE(files().read(path("file"), 4).bytes.empty());
  write("empty", "");
  EXPECT_TRUE(files().read(path("empty"), 0).ok());
}

TEST_P(FilesContractTest, OnlyRegularFilesAreRead) {
  write("directory/file");
  addFifo("fifo");
  EXPECT_EQ(files().read(path("directory"), 10).status, FileStatus::NotRegular);
  EXPECT_EQ(files().read(path("fifo"), 10).status, FileStatus::NotRegular);
  EXPECT_EQ(files().read(path("directory/file/below"), 10).status, FileStatus::NotFound);
  EXPECT_EQ(files().remove(path("directory")).status, FileStatus::NotRegular);
  EXPECT_EQ(listed(), (std::vector<std::string>{"directory/", "directory/file", "fifo/"}));
}

TEST_P(FilesContractTest, FailedWritesNameAReasonAndLeaveNothing) {
  write("file");
  write("directory/file");
  EXPECT_EQ(files().writeAtomically(path("directory"), "x").status, FileStatus::NotRegular);
  const FileResult below = files().writeAtomically(path("file/below"), "x");
  EXPECT_FALSE(below.ok());
  EXPECT_FALSE(below.reason.empty());
  EXPECT_FALSE(files().createDirectories(path("file/below")).ok());
  EXPECT_EQ(listed(), (std::vector<std::string>{"directory/", "directory/file", "file"}));
}

TEST_P(FilesContractTest, AFileThatIsReplacedOrRemovedIsListedOnceOrNever) {
  write("kept");
  write("gone");
  write("kept", "y");
  EXPECT_TRUE(files().remove(path("gone")).ok());
  EXPECT_EQ(listed(), std::vector<std::string>{"kept"});
}

TEST_P(FilesContractTest, HiddenEntriesAreNotListedAndTheVisitorMayStop) {
  write(".hidden");
  write(".hiddenDirectory/file");
  EXPECT_TRUE(listed().empty());
  write("a");
  write("b/c");
  int visits = 0;
  files().enumerate(files().documentsDirectory(), [&](const DirectoryEntry&) { return ++visits < 1; });
  EXPECT_EQ(visits, 1);
}

TEST_P(FilesContractTest, TheVisitorMayRemoveWhatItIsShown) {
  for (int i = 0; i < 50; ++i) {
    write("file" + std::to_string(i));
  }
  int visits = 0;
  files().enumerate(files().documentsDirectory(), [&](const DirectoryEntry& entry) {
    ++visits;
    return files().remove(entry.path).ok();
  });
  EXPECT_EQ(visits, 50);
  EXPECT_TRUE(listed().empty());
}

TEST_P(FilesContractTest, DirectoriesCanBeMadeTwice) {
  EXPECT_TRUE(files().createDirectories(path("a/b")).ok());
  EXPECT_TRUE(files().createDirectories(path("a/b")).ok());
  EXPECT_EQ(listed(), (std::vector<std::string>{"a/", "a/b/"}));
}

TEST_P(FilesContractTest, ANewFileReplacesNone) {
  EXPECT_TRUE(files().writeNew(path("deep/file"), "first").ok());
  EXPECT_EQ(files().writeNew(path("deep/file"), "second").status, FileStatus::Exists);
  EXPECT_EQ(files().read(path("deep/file"), 100).bytes, "first");
}

TEST_P(FilesContractTest, ALockHasOneHolderPerDirectory) {
  write("deep/file");
  auto lock = files().tryLock(path("deep"));
  EXPECT_TRUE(lock);
  EXPECT_FALSE(files().tryLock(path("deep")));
  EXPECT_TRUE(files().tryLock(path("other"))) << "there is nothing to hold";
  lock.reset();
  EXPECT_TRUE(files().tryLock(path("deep")));
  EXPECT_EQ(listed(), (std::vector<std::string>{"deep/", "deep/file"})) << "nothing is written";
}

}  // namespace
}  // namespace kesu
