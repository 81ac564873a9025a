#include "delivery/KesuStore.h"

#include <gtest/gtest.h>

#include "delivery/StoreFileName.h"
#include "foundation/PropertyList.h"
#include "support/KesuPriorityLogger.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

constexpr const char* kDocuments = "/home/Documents/";

using Texts = std::vector<std::string>;

class StoreTest : public ::testing::Test {
 protected:
  StoreTest() { KesuPriorityLogger::sharedLogger().setLogLevel(3); }
  ~StoreTest() override { KesuPriorityLogger::sharedLogger().setLogLevel(0); }

  bool addNumbered(int number) {
    platform.clock.advance(0.001);
    return store.add({{"dest", "e"}, {"n", number}});
  }

  Texts lines() {
    Texts texts;
    for (const auto& line : platform.log.takeLines()) {
      texts.push_back(line.text);
    }
    return texts;
  }

  std::int64_t counter() { return platform.defaults.integer("~numberOfFiles"); }

  testing::ScopedPlatform platform;
  KesuStore store{platform.files, platform.defaults, platform.clock};
};

TEST_F(StoreTest, GivesBackWhatItStored) {
  const Dictionary record = {{"dest", "e"}, {"~e", "Start"}, {"n", 3}, {"r", 4.5}, {"list", Array{"a", true}}};
  EXPECT_TRUE(store.add(record));
  const auto records = store.dictionariesToRepost();
  ASSERT_EQ(records.size(), 1U);
  Dictionary wanted = record;
  wanted.set("fnk", storeFileName(platform.clock.now()));
  EXPECT_EQ(records[0], wanted);
  EXPECT_EQ(counter(), 1);
}

TEST_F(StoreTest, TriesAgainToBringItsFilesToTheDisk) {
  EXPECT_TRUE(store.areFlushed());
  EXPECT_TRUE(addNumbered(1));
  platform.files.failWrites(FileStatus::OtherFailure);
  EXPECT_FALSE(store.flush());
  EXPECT_FALSE(store.areFlushed());
  platform.files.failWrites(FileStatus::Ok);
  EXPECT_TRUE(store.flush());
  EXPECT_TRUE(store.areFlushed());
  platform.files.failWrites(FileStatus::OtherFailure);
  EXPECT_TRUE(store.flush()) << "there is nothing to flush";
}

TEST_F(StoreTest, KeepsTextsThatXmlCannotRepresent) {
  const std::string text("\0\x1b[0m\xEF\xBF\xBF\xEE\x80\x9B", 11);
  EXPECT_TRUE(store.add({{"dest", "e"}, {text, text}, {"when", Date{1e12}}}));
  const auto records = store.dictionariesToRepost();
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(*records[0].find(text), Value(text));
  EXPECT_EQ(*records[0].find("when"), Value(Date{1e12}));
}

TEST_F(StoreTest, RefusesLoudlyWhatItCouldNotReadAgain) {
  EXPECT_FALSE(store.add({{"text", std::string(std::size_t{16} << 20, 'x')}}));
  EXPECT_TRUE(platform.files.paths().empty());
  const auto logged = platform.log.takeLines();
  ASSERT_EQ(logged.size(), 1U);
  EXPECT_EQ(logged[0].level, 0);
  EXPECT_TRUE(store.add({{"text", std::string((std::size_t{16} << 20) - 1000, 'x')}}));
  EXPECT_EQ(store.dictionariesToRepost().size(), 1U);
}

TEST_F(StoreTest, CountsFailedWritesToo) {
  EXPECT_FALSE(store.add({{"n", Array{Null{}}}}));
  EXPECT_EQ(counter(), 1);
  EXPECT_TRUE(platform.files.paths().empty());
}

TEST_F(StoreTest, ReplacesTheFileOfTheSameMicrosecond) {
  store.add({{"n", 1}});
  store.add({{"n", 2}});
  ASSERT_EQ(store.dictionariesToRepost().size(), 1U);
  EXPECT_EQ(*store.dictionariesToRepost()[0].find("n"), Value(2));
}

TEST_F(StoreTest, ActsOnItsLimitOnce) {
  addNumbered(1);
  addNumbered(2);
  for (const auto& [before, after, files] : {std::tuple{4999, 5000, 3U}, {5000, 5001, 3U}, {5001, 5002, 4U}}) {
    platform.defaults.set("~numberOfFiles", before);
    EXPECT_TRUE(addNumbered(before));
    EXPECT_EQ(counter(), after);
    EXPECT_EQ(store.storedFiles().size(), files);
  }
  EXPECT_EQ(*store.dictionariesToRepost()[0].find("n"), Value(2)) << "the first file is deleted";
}

TEST_F(StoreTest, NeverOpensWhatIsNotItsOwn) {
  platform.files.writeAtomically(std::string(kDocuments) + "film.mkv", "huge");
  platform.files.writeAtomically(std::string(kDocuments) + ".hidden.kesuCache", "temporary");
  platform.files.writeAtomically(std::string(kDocuments) + "bad.kesuCache", "no property list");
  platform.files.writeAtomically(std::string(kDocuments) + "list.kesuCache", *writePropertyList(Array{1}));
  platform.files.addSpecial(std::string(kDocuments) + "pipe.kesuCache");
  addNumbered(1);
  EXPECT_EQ(store.dictionariesToRepost().size(), 1U);
  EXPECT_EQ(platform.files.readCount(std::string(kDocuments) + "film.mkv"), 0);
  EXPECT_EQ(platform.files.readCount(std::string(kDocuments) + "pipe.kesuCache"), 0);
  EXPECT_EQ(lines(), Texts{"No record can be read from /home/Documents/bad.kesuCache, the first of 2 such files"});
}

TEST_F(StoreTest, FindsFilesInSubdirectoriesButCannotDeleteThemByTheirName) {
  platform.files.addSpecial(std::string(kDocuments) + "pipe.kesuCache");
  platform.files.writeAtomically(std::string(kDocuments) + "sub/a.kesuCache", *writePropertyList(Dictionary{{"n", 1}}));
  platform.files.writeAtomically(std::string(kDocuments) + "sub/b.kesuCache", *writePropertyList(Dictionary{{"n", 2}}));
  const auto records = store.dictionariesToRepost();
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(*records[0].find("fnk"), Value("a.kesuCache"));
  EXPECT_FALSE(store.deleteFile("a.kesuCache"));
  const auto logged = lines();
  ASSERT_EQ(logged.size(), 2U);
  EXPECT_EQ(logged[0], "[KesuStore:114]fullpath /home/Documents/a.kesuCache");
  EXPECT_TRUE(logged[1].starts_with("[KesuStore:129]FAILED removing a.kesuCache "));
  store.deleteFirstFile();
  store.deleteAllFiles();
  EXPECT_EQ(lines(), (Texts{"[KesuStore:114]fullpath /home/Documents/sub/a.kesuCache",
                            "[KesuStore:193]Deleted sub/a.kesuCache successfully and 1 unsuccessfully",
                            "[KesuStore:114]fullpath /home/Documents/sub/b.kesuCache",
                            "[KesuStore:169]Deleted 1 successfully and 0 unsuccessfully"}))
      << "both delete by the path that they have found";
}

TEST_F(StoreTest, DeletesNoForeignFile) {
  EXPECT_FALSE(store.deleteFile("letter.txt"));
  EXPECT_EQ(lines(), Texts());
}

TEST_F(StoreTest, ListsItsFiles) {
  addNumbered(1);
  addNumbered(2);
  store.ls();
  EXPECT_EQ(lines(), (Texts{"[KesuStore:145]ls 1 - " + store.storedFiles()[0],
                            "[KesuStore:145]ls 2 - " + store.storedFiles()[1], "[KesuStore:148]2 files listed"}));
}

TEST_F(StoreTest, DeletesTheFirstFileAndCountsItOff) {
  store.deleteFirstFile();
  EXPECT_EQ(counter(), 0);
  EXPECT_EQ(lines(), Texts{"[KesuStore:193]Deleted (null) successfully and 0 unsuccessfully"});
  addNumbered(1);
  addNumbered(2);
  const std::string first = store.storedFiles()[0];
  store.deleteFirstFile();
  EXPECT_EQ(counter(), 1);
  const std::string name = first.substr(std::string(kDocuments).size());
  EXPECT_EQ(lines(), (Texts{"[KesuStore:114]fullpath " + first,
                            "[KesuStore:193]Deleted " + name + " successfully and 1 unsuccessfully"}));
  store.deleteAllFiles();
  EXPECT_EQ(counter(), 1) << "this one leaves the counter";
  EXPECT_TRUE(store.storedFiles().empty());
}

}  // namespace
}  // namespace kesu
