#include "platform/linux/defaults/DefaultsCache.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

using Kind = StoreChange::Kind;

/// What a batch would write under each key.
std::map<std::string, Kind> kinds(const DefaultsCache::Batch& batch) {
  std::map<std::string, Kind> found;
  for (const StoreChange& change : batch.changes) {
    found.emplace(change.key, change.kind);
  }
  return found;
}

class DefaultsCacheTest : public ::testing::Test {
 protected:
  // One round to the file; returns what it would write.
  std::map<std::string, Kind> write(bool succeeds) {
    cache_.collect(batch_);
    auto written = kinds(batch_);
    cache_.finish(batch_, succeeds);
    return written;
  }

  void append(std::string_view key, std::string_view suffix) {
    const DefaultsChange change = DefaultsChange::append(key, suffix);
    cache_.apply({&change, 1});
  }

  DefaultsCache cache_;
  DefaultsCache::Batch batch_;
};

TEST_F(DefaultsCacheTest, GivesBackWhatCouldNotBeWritten) {
  append("flow", "a");
  write(true);
  append("flow", "b");
  cache_.collect(batch_);
  append("flow", "c");  // While the file was being written.
  cache_.finish(batch_, false);
  cache_.collect(batch_);
  ASSERT_EQ(batch_.changes.size(), 1U);
  EXPECT_EQ(batch_.changes.front().text, "bc");
  cache_.finish(batch_, true);
}

TEST_F(DefaultsCacheTest, WritesAnArrayWholeAfterItsPartsWereLost) {
  Array list(200, "x");
  cache_.set("list", list);
  write(true);
  list[0] = 1;
  cache_.set("list", list);
  cache_.collect(batch_);
  EXPECT_FALSE(batch_.changes.front().isWhole);
  cache_.finish(batch_, false);
  cache_.collect(batch_);
  EXPECT_TRUE(batch_.changes.front().isWhole);
  EXPECT_EQ(batch_.changes.front().parts.size(), batch_.changes.front().partCount);
  cache_.finish(batch_, true);
}

TEST_F(DefaultsCacheTest, ForgetsARemovedKeyOnceTheFileHas) {
  cache_.set("a", 1);
  write(true);
  cache_.remove("a");
  EXPECT_FALSE(cache_.contains("a"));
  EXPECT_EQ(write(false), (std::map<std::string, Kind>{{"a", Kind::Remove}}));
  EXPECT_EQ(write(true), (std::map<std::string, Kind>{{"a", Kind::Remove}}));
  EXPECT_FALSE(cache_.hasUnsaved());
}

TEST_F(DefaultsCacheTest, LoadsBelowWhatWasChangedBefore) {
  cache_.set("a", "newer");
  DefaultsCache::Entries saved;
  saved["a"].fill("older");
  saved["b"].isPresent = saved["b"].isUnread = true;
  cache_.load(std::move(saved), DefaultsCache::Newer::Memory);
  EXPECT_EQ(cache_.get("a"), Value("newer"));
  EXPECT_TRUE(cache_.isUnread("b"));
  cache_.fill("b", Value(Array{1}));
  EXPECT_EQ(cache_.get("b"), Value(Array{1}));
  cache_.fill("b", Value(Array{2}));  // It is not unread any more.
  EXPECT_EQ(cache_.get("b"), Value(Array{1}));
}

}  // namespace
}  // namespace kesu
