#include <gtest/gtest.h>

#include "testing/FakeUserDefaults.h"

namespace kesu {
namespace {

TEST(UserDefaultsTest, ShorthandsConvertWhatIsThere) {
  struct Row {
    const char* name;
    Object stored;
    std::string text;
    std::int64_t integer;
    double real;
    bool boolean;
  };
  const Row rows[] = {
      {"nothing", nil, "", 0, 0.0, false},
      {"text", Object("12 monkeys"), "12 monkeys", 12, 12.0, false},
      {"one", Object("1"), "1", 1, 1.0, true},
      {"yes", Object("YES"), "YES", 0, 0.0, true},
      {"true text", Object("true"), "true", 0, 0.0, true},
      {"no", Object("NO"), "NO", 0, 0.0, false},
      {"integer", Object(-7), "", -7, -7.0, true},
      {"zero", Object(0), "", 0, 0.0, false},
      {"real", Object(2.9), "", 2, 2.9, true},
      {"flag", Object(true), "", 1, 1.0, true},
      {"array", Object(Array{1}), "", 0, 0.0, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    testing::FakeUserDefaults defaults;
    if (row.stored) {
      defaults.set("key", *row.stored);
    }
    EXPECT_EQ(defaults.text("key"), row.text);
    EXPECT_EQ(defaults.integer("key"), row.integer);
    EXPECT_EQ(defaults.real("key"), row.real);
    EXPECT_EQ(defaults.boolean("key"), row.boolean);
  }
}

TEST(FakeUserDefaultsTest, KeepsOnDiskOnlyWhatWasSynchronized) {
  testing::FakeUserDefaults first;
  first.set("kept", 1);
  EXPECT_TRUE(first.synchronize());
  first.set("lost", 2);
  first.refuseWrites(true);
  EXPECT_FALSE(first.synchronize());
  EXPECT_EQ(first.synchronizeCount(), 2);

  testing::FakeUserDefaults next(first.keptOnDisk());
  EXPECT_EQ(next.integer("kept"), 1);
  EXPECT_EQ(next.get("lost"), std::nullopt);
}

}  // namespace
}  // namespace kesu
