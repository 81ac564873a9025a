#include "uikit/AccessibilityTree.h"

#include <gtest/gtest.h>
#include <kesu/ui/Button.h>
#include <kesu/ui/ImageView.h>
#include <kesu/ui/Label.h>

namespace kesu {
namespace {

/// A window with a label, and a modal dialog at (100, 900) that is not shown yet.
class AccessibilityTreeTest : public ::testing::Test {
 protected:
  AccessibilityTreeTest() {
    addLabel(window, "behind", {0.0, 0.0, 100.0, 20.0});
    dialog->setModal(true);
    dialog->setAccessibility({AccessibilityInfo::Role::Dialog, "Message", ""});
  }

  static std::shared_ptr<Label> addLabel(View& view, const std::string& text, const Rect& frame) {
    auto label = std::make_shared<Label>(frame);
    label->setText(text);
    view.addSubview(label);
    return label;
  }

  void addButton(const std::string& title, double x) {
    const auto button = std::make_shared<Button>(Rect{x, 0.0, 100.0, 50.0});
    button->setTitle(title);
    dialog->addSubview(button);
  }

  /// Labels and values, the focused one with a star.
  std::string read() const {
    std::string text;
    for (const AccessibilityNode& node : accessibilityTree(window)) {
      text += node.label + node.value + (node.isFocused ? "* " : " ");
    }
    return text;
  }

  Window window;
  std::shared_ptr<View> dialog = std::make_shared<View>(Rect{100.0, 900.0, 500.0, 180.0});
};

TEST_F(AccessibilityTreeTest, ReadsTheModalViewOnlyWithItsHeadingFirst) {
  addButton("a", 0.0);
  addButton("b", 200.0);
  addLabel(*dialog, "text", {0.0, -200.0, 100.0, 20.0});
  const auto title = addLabel(*dialog, "title", {0.0, -100.0, 100.0, 20.0});
  title->setAccessibility({AccessibilityInfo::Role::Heading, "", "1"});
  EXPECT_EQ(read(), "behind ");
  window.addSubview(dialog);
  EXPECT_EQ(read(), "Message title1 text a* b ");
}

TEST_F(AccessibilityTreeTest, SkipsWhatIsHiddenOrHasNoRole) {
  addLabel(*dialog, "hidden", {0.0, -150.0, 100.0, 20.0})->setHidden(true);
  addLabel(*dialog, "ornament", {0.0, -150.0, 100.0, 20.0})->setAccessibility({});
  dialog->addSubview(std::make_shared<ImageView>(Rect{0.0, -150.0, 100.0, 20.0}));
  window.addSubview(dialog);
  EXPECT_EQ(read(), "Message ");
}

TEST_F(AccessibilityTreeTest, HasRolesAndFramesInTheWindow) {
  addButton("c", 400.0);
  window.addSubview(dialog);
  EXPECT_EQ(accessibilityTree(window).back().role, AccessibilityInfo::Role::Button);
  EXPECT_EQ(accessibilityTree(window).back().frame, (Rect{500.0, 900.0, 100.0, 50.0}));
}

}  // namespace
}  // namespace kesu
