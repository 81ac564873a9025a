#include "tools/kesu-dev/commands/ChildProgram.h"

#include <gtest/gtest.h>

namespace kesu::dev {
namespace {

TEST(ChildProgram, ReplacesVariablesByTheirWholeName) {
  const std::vector<std::string> own{"PATH=/bin", "KESU_HOME=/old", "KESU_HOME_2=x"};
  EXPECT_EQ(environmentWith(own, {"KESU_HOME=/new", "A=b"}),
            (std::vector<std::string>{"PATH=/bin", "KESU_HOME_2=x", "KESU_HOME=/new", "A=b"}));
}

}  // namespace
}  // namespace kesu::dev
