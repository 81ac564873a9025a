#include "foundation/Keepable.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

TEST(Keepable, LeavesOutNullsAtAnyDepth) {
  const Value value = Dictionary{
      {"a", Null{}}, {"b", "x\x02"}, {"c", Array{Null{}, 1, Array{Null{}}, Dictionary{{"d", Null{}}}}}, {"e", 2.5}};
  EXPECT_EQ(keepableCopy(value), Value(Dictionary{{"b", "x\x02"}, {"c", Array{1, Array{}, Dictionary{}}}, {"e", 2.5}}));
  EXPECT_EQ(keepableCopy(Null{}), Value(""));
}

}  // namespace
}  // namespace kesu
