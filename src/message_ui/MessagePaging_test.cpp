#include "message_ui/MessagePaging.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace kesu {
namespace {

Array headers(const std::string& states) {
  Array made;
  for (const char state : states) {
    made.push_back(state == '-' ? Dictionary{{"mid", "m"}} : Dictionary{{"mid", "m"}, {"contentRead", state == 'r'}});
  }
  return made;
}

TEST(MessagePaging, ChoosesTheFirstMessageByItsRule) {
  const std::pair<const char*, int> cases[] = {{"", 0},     {"r", 0},    {"rrr", 0}, {"u", 0},    {"uuu", 0},
                                               {"ruru", 2}, {"rrur", 2}, {"urr", 0}, {"r-r-", 2}, {"rrru", 3}};
  for (const auto& [states, expected] : cases) {
    EXPECT_EQ(firstMessageIndex(headers(states)), expected) << states;
  }
}

TEST(MessagePaging, StopsAtTheEnds) {
  EXPECT_EQ(pagedIndex(kNextTag, 0, 3), 1);
  EXPECT_EQ(pagedIndex(kNextTag, 2, 3), 2);
  EXPECT_EQ(pagedIndex(kNextTag, 0, 0), 0);
  EXPECT_EQ(pagedIndex(kPreviousTag, 2, 3), 1);
  EXPECT_EQ(pagedIndex(kPreviousTag, 0, 3), 0);
  EXPECT_EQ(pagedIndex(5, 2, 3), 1) << "every other tag is previous";
}

}  // namespace
}  // namespace kesu
