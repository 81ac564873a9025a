#include <gtest/gtest.h>
#include <kesu/ui/TableView.h>
#include <kesu/ui/Window.h>

#include <cmath>
#include <limits>

#include "drawing/Canvas.h"
#include "testing/ScopedPlatform.h"
#include "uikit/Animator.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

/// Rows of these heights; the third has no view.
class TableViewTest : public ::testing::Test, private TableViewDataSource {
 protected:
  TableViewTest() { table->setDataSource(this); }
  ~TableViewTest() override { Animator::shared().finishAll(); }

  void show(std::vector<double> rows) {
    heights = std::move(rows);
    table->reloadData();
  }
  double shown() const {
    return -ViewDrawing::presented(*table->subviews().front()).center.y + table->contentHeight() / 2.0;
  }

  const View& top() const { return *table->subviews()[1]; }
  const View& bottom() const { return *table->subviews()[2]; }
  const View& indicator() const { return *table->subviews()[3]; }

  testing::ScopedPlatform platform;
  std::size_t leavesAt = 1'000'000;
  std::vector<double> heights;
  std::shared_ptr<TableView> table = std::make_shared<TableView>(Rect{0.0, 0.0, 300.0, 200.0});

 private:
  std::size_t numberOfRows() override { return heights.size(); }
  double heightOfRow(std::size_t row) override {
    if (row == leavesAt) {
      table->setDataSource(nullptr);
    }
    return heights[row];
  }
  ViewPtr cellForRow(std::size_t row, double width) override {
    return row == 2 ? nullptr : std::make_shared<View>(Rect{0.0, 0.0, width, 1.0});
  }
};

TEST_F(TableViewTest, StacksRowsOfAnyHeight) {
  show({100.0, std::nan(""), 40.0, -5.0, 60.0});
  EXPECT_EQ(table->contentHeight(), 200.0);
  EXPECT_FALSE(table->canBecomeFocused()) << "it all fits";
  EXPECT_FALSE(table->handleArrow(RemoteButton::Down));
  const auto& cells = table->subviews().front()->subviews();
  ASSERT_EQ(cells.size(), 4u);
  EXPECT_EQ(cells.back()->frame(), (Rect{0.0, 140.0, 300.0, 60.0}));
  table->setScrollOffset(50.0, false);
  EXPECT_EQ(table->scrollOffset(), 0.0);
  table->setDataSource(nullptr);
  EXPECT_EQ(table->contentHeight(), 0.0);
  show(std::vector<double>(20'000, 1.0));
  EXPECT_EQ(table->contentHeight(), 0.0) << "no source any more";
}

TEST_F(TableViewTest, CallsNoSourceThatDetachedItself) {
  leavesAt = 1;
  show({100.0, 100.0, 100.0});
  EXPECT_EQ(table->contentHeight(), 0.0);
  EXPECT_TRUE(table->subviews().front()->subviews().empty());
}

TEST_F(TableViewTest, ClampsTheScrollOffset) {
  show({300.0, 150.0});
  EXPECT_TRUE(table->canBecomeFocused());
  EXPECT_FALSE(table->handleArrow(RemoteButton::Up));
  EXPECT_FALSE(table->handleArrow(RemoteButton::Left));
  EXPECT_TRUE(table->handleArrow(RemoteButton::Down));
  EXPECT_EQ(table->scrollOffset(), 120.0);
  EXPECT_EQ(shown(), 0.0) << "it gets there gradually";
  Animator::shared().tick(0.0);
  Animator::shared().tick(0.125);
  EXPECT_NEAR(shown(), 60.0, 1e-9);
  EXPECT_TRUE(table->handleArrow(RemoteButton::Down));
  EXPECT_TRUE(table->handleArrow(RemoteButton::Down));
  EXPECT_EQ(table->scrollOffset(), 250.0);
  EXPECT_FALSE(table->handleArrow(RemoteButton::Down)) << "the focus moves on";
  Animator::shared().finishAll();
  EXPECT_EQ(shown(), 250.0);
  table->scrollToRow(1, false);
  EXPECT_EQ(shown(), 250.0) << "as far as there is anything";
  table->scrollToRow(0, false);
  EXPECT_EQ(shown(), 0.0);
}

TEST_F(TableViewTest, KeepsItsOffsetAsFarAsThereAreRows) {
  show({300.0, 300.0});
  for (const auto& [wanted, got] : {std::pair(-5.0, 0.0), {std::nan(""), 0.0}, {1e300, 400.0}}) {
    table->setScrollOffset(wanted, false);
    EXPECT_EQ(table->scrollOffset(), got);
  }
  show({300.0, 100.0});
  EXPECT_EQ(table->scrollOffset(), 200.0);
  table->setFrame({0.0, 0.0, 300.0, 350.0});
  EXPECT_EQ(table->scrollOffset(), 50.0);
}

TEST_F(TableViewTest, FadesWhereRowsAreCutAndIndicatesThePosition) {
  show({100.0});
  EXPECT_EQ(top().alpha() + bottom().alpha() + indicator().alpha(), 0.0);
  show({300.0, 300.0});
  EXPECT_EQ(top().alpha(), 0.0);
  EXPECT_EQ(bottom().alpha(), 1.0);
  EXPECT_EQ(indicator().alpha(), 1.0);
  const double length = indicator().frame().height;
  EXPECT_DOUBLE_EQ(indicator().frame().y, 6.0);
  table->setScrollOffset(400.0, false);
  EXPECT_EQ(top().alpha(), 1.0);
  EXPECT_EQ(bottom().alpha(), 0.0);
  EXPECT_NEAR(indicator().frame().bottom(), 194.0, 1e-9);
  EXPECT_DOUBLE_EQ(indicator().frame().height, length);
}

TEST_F(TableViewTest, FadesIntoAnOpaqueBackgroundOnly) {
  const auto opacityAt = [&](std::size_t row) {
    std::vector<std::uint32_t> pixels(300 * 50);
    ViewDrawing::draw(top(), *makeCanvas({pixels.data(), 300, 50, 300}));
    return pixels[row * 300 + 5] >> 24;
  };
  show({300.0, 300.0});
  EXPECT_EQ(opacityAt(0), 0u);
  EXPECT_EQ(opacityAt(19), 0u);
  table->setBackgroundColor(Color::redColor());
  EXPECT_GT(opacityAt(0), 240u);
  EXPECT_LT(opacityAt(19), 200u);
}

TEST_F(TableViewTest, WidensItsIndicatorWhileItIsFocused) {
  show({300.0, 300.0});
  Window window;
  window.addSubview(table);
  table->setModal(true);
  EXPECT_EQ(window.focusedView(), table.get());
  EXPECT_EQ(indicator().frame().width, 8.0);
  table->setModal(false);
  EXPECT_EQ(window.focusedView(), nullptr);
  EXPECT_EQ(indicator().frame().width, 4.0);
}

}  // namespace
}  // namespace kesu
