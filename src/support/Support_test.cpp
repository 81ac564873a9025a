#include <gtest/gtest.h>
#include <kesu/support/CollectionHelpers.h>

#include "support/KesuPriorityLogger.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

class LoggerTest : public ::testing::Test {
 protected:
  ~LoggerTest() override { logger.setLogLevel(0); }

  std::size_t linesAt(std::int32_t level, std::uint64_t threshold) {
    logger.setLogLevel(threshold);
    KESU_LOG(level, "line");
    return platform.log.takeLines().size();
  }

  testing::ScopedPlatform platform;
  KesuPriorityLogger& logger = KesuPriorityLogger::sharedLogger();
};

TEST_F(LoggerTest, ShowsLinesUpToTheThreshold) {
  constexpr auto kEverything = static_cast<std::uint64_t>(-1);
  const struct {
    std::int32_t level;
    std::uint64_t threshold;
    std::size_t shown;
  } rows[] = {{0, 0, 1}, {2, 0, 0}, {3, 0, 0},  {2, 2, 1},           {3, 2, 0},
              {3, 3, 1}, {3, 9, 1}, {-1, 3, 0}, {3, kEverything, 1}, {-1, kEverything, 1}};
  for (const auto& row : rows) {
    EXPECT_EQ(linesAt(row.level, row.threshold), row.shown) << row.level << " at " << row.threshold;
  }
}

TEST_F(LoggerTest, NamesSourceAndLineAndKeepsLongTexts) {
  logger.setLogLevel(3);
  KESU_LOG_AT(3, "a/path/KesuStore", 148, "%ld files listed", 2L);
  KESU_LOG(0, "%s", std::string(5000, 'x').c_str());
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].text, "[KesuStore:148]2 files listed");
  EXPECT_EQ(lines[1].text, std::string(5000, 'x'));
}

TEST_F(LoggerTest, EvaluatesNoArgumentOfASuppressedLine) {
  int evaluated = 0;
  KESU_LOG(3, "%d", ++evaluated);
  KESU_LOG_AT(3, "KesuStore", 1, "%d", ++evaluated);
  EXPECT_EQ(evaluated, 0);
}

TEST(CollectionHelpers, ReplacesNullsInDictionariesButNotInArrays) {
  const Dictionary given = {{"a", Null{}}, {"b", Dictionary{{"c", Null{}}}}, {"d", Array{Null{}}}, {"e", 4}};
  const Dictionary wanted = {{"a", ""}, {"b", Dictionary{{"c", ""}}}, {"d", Array{Null{}}}, {"e", 4}};
  EXPECT_EQ(dictionaryByReplacingNilValuesWithEmptyString(given), wanted);
  const auto nested = [](Value innermost) {
    for (int depth = 0; depth < 100'000; ++depth) {
      Dictionary around;
      around.set("a", std::move(innermost));
      innermost = std::move(around);
    }
    return innermost;
  };
  const Value deep = dictionaryByReplacingNilValuesWithEmptyString(*nested(Null{}).dictionary());
  EXPECT_TRUE(deep == nested(""));
}

TEST(CollectionHelpers, JoinsTextsAndSerialises) {
  EXPECT_EQ(concatenated("a", {"b", std::nullopt, "c"}), "abc");
  EXPECT_EQ(concat("a", {"b", std::nullopt, "c"}), "ab");
  EXPECT_EQ(serializeDictionaryToString({{"b", 1}, {"a", "ä"}}), R"({"b":1,"a":"ä"})");
  EXPECT_EQ(serializeDictionaryToString({{"b", Date{}}}), std::nullopt);
}

TEST(CollectionHelpers, RunsBlocksAtOnceOrAfterTheirDelay) {
  testing::ScopedPlatform platform;
  int runs = 0;
  block([&runs] { ++runs; });
  EXPECT_EQ(runs, 1);
  block([&runs] { ++runs; }, 2.0);
  platform.mainLoop.runFor(1.9);
  EXPECT_EQ(runs, 1);
  platform.mainLoop.runFor(0.2);
  EXPECT_EQ(runs, 2);
}

}  // namespace
}  // namespace kesu
