#include "foundation/Keepable.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

TEST(Keepable, LeavesOutWhatNoPropertyListCanHold) {
  const Value value = Dictionary{{"a\x01", Null{}},
                                 {"b\x01", "x\x02y\tz\xEF\xBF\xBF"},
                                 {"c", Array{Null{}, 1, Array{Null{}}, Dictionary{{"d", Null{}}}}},
                                 {"e", 2.5}};
  EXPECT_EQ(keepableCopy(value), Value(Dictionary{{"b", "xy\tz"}, {"c", Array{1, Array{}, Dictionary{}}}, {"e", 2.5}}));
  EXPECT_EQ(keepableCopy(Null{}), Value(""));
}

}  // namespace
}  // namespace kesu
