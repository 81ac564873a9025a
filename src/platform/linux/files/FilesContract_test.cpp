#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <functional>
#include <memory>

#include "platform/linux/files/LinuxFiles.h"
#include "testing/FakeFiles.h"
#include "testing/FaultyFiles.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

/// One implementation under test, with a way to place a FIFO into its tree.
class FilesSubject {
 public:
  virtual ~FilesSubject() = default;
  virtual Files& files() = 0;
  virtual void addFifo(const std::string& path) = 0;
};

class LinuxFilesSubject final : public FilesSubject {
 public:
  Files& files() override { return files_; }
  void addFifo(const std::string& path) override { EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0); }

 private:
  testing::TemporaryDirectory directory_;
  LinuxFiles files_{directory_ / "home"};
};

class FakeFilesSubject : public FilesSubject {
 public:
  Files& files() override { return files_; }
  void addFifo(const std::string& path) override { files_.addSpecial(path); }

 private:
  testing::FakeFiles files_;
};

class FaultlessSubject final : public FakeFilesSubject {
 public:
  Files& files() override { return wrapper_; }

 private:
  testing::FaultyFiles wrapper_{FakeFilesSubject::files()};
};

struct Implementation {
  const char* name;
  std::function<std::unique_ptr<FilesSubject>()> make;
};

class FilesContractTest : public ::testing::TestWithParam<Implementation> {
 protected:
  Files& files() { return subject_->files(); }
  std::string path(const std::string& name) { return files().documentsDirectory() + "/" + name; }
  void write(const std::string& name, std::string_view bytes = "x") {
    EXPECT_TRUE(files().writeAtomically(path(name), bytes).ok()) << name;
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

  const std::unique_ptr<FilesSubject> subject_ = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(All, FilesContractTest,
                         ::testing::Values(Implementation{"Linux", std::make_unique<LinuxFilesSubject>},
                                           Implementation{"Fake", std::make_unique<FakeFilesSubject>},
                                           Implementation{"FaultyWithoutFault", std::make_unique<FaultlessSubject>}),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

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
  subject_->addFifo(path("fifo"));
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

TEST(FaultyFilesTest, FailsTheGivenTimesAndThenForwards) {
  testing::FakeFiles inner;
  testing::FaultyFiles files(inner);
  files.failWrites(FileStatus::NoSpace, 2);
  EXPECT_EQ(files.writeAtomically("/a", "1").status, FileStatus::NoSpace);
  EXPECT_EQ(files.writeAtomically("/a", "1").status, FileStatus::NoSpace);
  EXPECT_TRUE(inner.paths().empty());
  EXPECT_TRUE(files.writeAtomically("/a", "1").ok());
  files.garbleReads("garbage");
  EXPECT_EQ(files.read("/a", 10).bytes, "garbage");
  files.failReads(FileStatus::NotAllowed);
  EXPECT_EQ(files.read("/a", 10).status, FileStatus::NotAllowed);
  files.failRemoves(FileStatus::NotAllowed, 1);
  EXPECT_EQ(files.remove("/a").status, FileStatus::NotAllowed);
  EXPECT_TRUE(files.remove("/a").ok());
  files.failCreateDirectories(FileStatus::NoSpace, 1);
  EXPECT_EQ(files.createDirectories("/d").status, FileStatus::NoSpace);
}

}  // namespace
}  // namespace kesu
