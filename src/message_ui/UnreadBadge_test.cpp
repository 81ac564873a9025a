#include "message_ui/UnreadBadge.h"

#include <gtest/gtest.h>
#include <kesu/ui/Label.h>

#include <memory>

namespace kesu {
namespace {

TEST(UnreadBadge, LooksAsItAlwaysDid) {
  const auto parent = std::make_shared<View>();
  const auto view = std::make_shared<View>(Rect{100.0, 50.0, 40.0, 30.0});
  addUnreadBadge(*view, 3);  // Without a superview nothing happens.
  parent->addSubview(view);
  addUnreadBadge(*view, 0);
  addUnreadBadge(*view, 12);
  ASSERT_EQ(parent->subviews().size(), 3U) << "each call adds another one";
  const auto badge = std::dynamic_pointer_cast<Label>(parent->subviews().back());
  EXPECT_EQ(badge->frame(), (Rect{127.0, 37.0, 26.0, 26.0}));
  EXPECT_EQ(badge->text(), "12");
  EXPECT_EQ(std::dynamic_pointer_cast<Label>(parent->subviews()[1])->text(), "0");
  EXPECT_EQ(badge->font(), Font::system(14.0));
  EXPECT_EQ(badge->backgroundColor(), Color::redColor());
  EXPECT_EQ(badge->cornerRadius(), 14.0);
  EXPECT_EQ(badge->borderWidth(), 1.0);
  EXPECT_EQ(badge->borderColor(), Color::clear());
  EXPECT_TRUE(badge->clipsToBounds());
  EXPECT_EQ(badge->shadow().opacity, 0.0);
}

TEST(UnreadBadge, LiesOnTheCornerAlsoOfAnEmptyView) {
  const auto parent = std::make_shared<View>();
  const auto view = std::make_shared<View>();
  parent->addSubview(view);
  addUnreadBadge(*view, 1);
  EXPECT_EQ(parent->subviews().back()->frame(), (Rect{-13.0, -13.0, 26.0, 26.0}));
}

}  // namespace
}  // namespace kesu
