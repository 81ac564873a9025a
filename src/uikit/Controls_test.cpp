#include <gtest/gtest.h>
#include <kesu/ui/Button.h>
#include <kesu/ui/ImageView.h>
#include <kesu/ui/Label.h>
#include <kesu/ui/TableView.h>
#include <kesu/ui/Window.h>

#include <algorithm>
#include <cmath>

#include "graphics/Canvas.h"
#include "testing/FontRelease.h"
#include "testing/ScopedPlatform.h"
#include "uikit/Animator.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kBlue = 0xFF0000FF;

/// What a view draws by itself, 40 x 20 pixels.
class Drawing {
 public:
  explicit Drawing(const View& view) { ViewDrawing::draw(view, canvas_); }

  std::uint32_t at(int x, int y) const { return pixels_[static_cast<std::size_t>(y * 40 + x)]; }
  bool isEmpty() const {
    return std::ranges::all_of(pixels_, [](std::uint32_t pixel) { return pixel == 0; });
  }

 private:
  std::vector<std::uint32_t> pixels_ = std::vector<std::uint32_t>(40 * 20);
  Canvas canvas_{pixels_.data(), 40, 20, 40, 1.0};
};

/// Left half red, right half blue, 40 x 40.
ImagePtr twoColors() {
  std::vector<std::uint32_t> pixels(40 * 40, kRed);
  for (std::size_t place = 0; place < pixels.size(); ++place) {
    pixels[place] = place % 40 < 20 ? kRed : kBlue;
  }
  return std::make_shared<Image>(40, 40, std::move(pixels));
}

TEST(ControlsTest, PlacesPicturesAsTold) {
  ImageView view({0.0, 0.0, 40.0, 20.0});
  EXPECT_TRUE(Drawing(view).isEmpty());
  view.setImage(twoColors());
  view.setContentMode(ImageView::ContentMode::Fill);
  EXPECT_EQ(Drawing(view).at(1, 10), kRed);
  EXPECT_EQ(Drawing(view).at(38, 10), kBlue);
  view.setContentMode(ImageView::ContentMode::AspectFit);
  EXPECT_EQ(Drawing(view).at(8, 10), 0u);
  EXPECT_EQ(Drawing(view).at(12, 10), kRed);
  EXPECT_EQ(Drawing(view).at(28, 10), kBlue);
  EXPECT_EQ(Drawing(view).at(32, 10), 0u);
  view.setContentMode(ImageView::ContentMode::AspectFill);
  EXPECT_EQ(Drawing(view).at(0, 0), kRed);
  view.setCornerRadius(10.0);
  EXPECT_EQ(Drawing(view).at(0, 0), 0u) << "cut at the corner";
  EXPECT_EQ(Drawing(view).at(38, 10), kBlue);
  view.setFrame({});
  EXPECT_TRUE(Drawing(view).isEmpty());
}

TEST(ControlsTest, StretchesAButtonsPictureWithinItsCorners) {
  Button button({0.0, 0.0, 40.0, 20.0});
  button.setBackgroundImage(twoColors());
  button.setCornerRadius(6.0);
  EXPECT_EQ(Drawing(button).at(0, 0), 0u);
  EXPECT_EQ(Drawing(button).at(1, 10), kRed);
  EXPECT_EQ(Drawing(button).at(38, 10), kBlue);
}

TEST(ControlsTest, DrawsAgainOnlyWhatIsSetToSomethingElse) {
  Window window;
  auto label = std::make_shared<Label>(Rect{0.0, 0.0, 40.0, 20.0});
  auto button = std::make_shared<Button>(Rect{0.0, 0.0, 40.0, 20.0});
  auto picture = std::make_shared<ImageView>(Rect{0.0, 0.0, 40.0, 20.0});
  window.addSubview(label);
  window.addSubview(button);
  window.addSubview(picture);
  const ImagePtr image = twoColors();
  const std::vector<std::function<void()>> changes = {
      [&] { label->setText("a"); },
      [&] { label->setFont(Font::system(9.0)); },
      [&] { label->setTextColor(Color::redColor()); },
      [&] { label->setAlignment(TextAlignment::Right); },
      [&] { label->setNumberOfLines(0); },
      [&] { label->setMinimumScaleFactor(0.5); },
      [&] { button->setTitle("a"); },
      [&] { button->setFont(Font::system(9.0)); },
      [&] { button->setTitleColor(Color::redColor()); },
      [&] { button->setBackgroundImage(image); },
      [&] { picture->setImage(image); },
      [&] { picture->setContentMode(ImageView::ContentMode::Fill); },
  };
  for (std::size_t change = 0; change < changes.size(); ++change) {
    const std::uint64_t before = ViewDrawing::changeCount(window);
    changes[change]();
    EXPECT_EQ(ViewDrawing::changeCount(window), before + 1) << change;
    changes[change]();
    EXPECT_EQ(ViewDrawing::changeCount(window), before + 1) << change;
  }
}

TEST(ControlsTest, SetsALabelInTheSizeThatIsShown) {
  const testing::ScopedPlatform platform;
  const auto label = std::make_shared<Label>(Rect{0.0, 0.0, 40.0, 20.0});
  label->setText("text");
  label->setFont(Font::system(12.0));
  animate(1.0, [&] { label->setFrame({0.0, 0.0, 40.0, 400.0}); });
  EXPECT_FALSE(Drawing(*label).isEmpty()) << "its middle is still at 10";
  Animator::shared().finishAll();
  EXPECT_TRUE(Drawing(*label).isEmpty()) << "its middle is far below";
}

/// Rows of these heights; the third has no view.
class TableTest : public ::testing::Test, private TableViewDataSource {
 protected:
  TableTest() { table->setDataSource(this); }
  ~TableTest() override { Animator::shared().finishAll(); }

  void show(std::vector<double> rows) {
    heights = std::move(rows);
    table->reloadData();
  }
  double shown() const {
    return -ViewDrawing::presented(*table->subviews().front()).center.y + table->contentHeight() / 2.0;
  }

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

TEST_F(TableTest, StacksRowsOfAnyHeight) {
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

TEST_F(TableTest, AsksNoSourceThatHasTakenItselfAway) {
  leavesAt = 1;
  show({100.0, 100.0, 100.0});
  EXPECT_EQ(table->contentHeight(), 0.0);
  EXPECT_TRUE(table->subviews().front()->subviews().empty());
}

TEST_F(TableTest, ScrollsToTheEndAndNoFurther) {
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

TEST_F(TableTest, KeepsItsPlaceAsFarAsThereAreRows) {
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

TEST_F(TableTest, FadesWhereRowsAreCutAndTellsThePlace) {
  const auto part = [&](std::size_t index) -> const View& { return *table->subviews()[index]; };
  const View& top = part(1);
  const View& bottom = part(2);
  const View& place = part(3);
  show({100.0});
  EXPECT_EQ(top.alpha() + bottom.alpha() + place.alpha(), 0.0);
  show({300.0, 300.0});
  EXPECT_EQ(top.alpha(), 0.0);
  EXPECT_EQ(bottom.alpha(), 1.0);
  EXPECT_EQ(place.alpha(), 1.0);
  const double length = place.frame().height;
  EXPECT_DOUBLE_EQ(place.frame().y, 6.0);
  table->setScrollOffset(400.0, false);
  EXPECT_EQ(top.alpha(), 1.0);
  EXPECT_EQ(bottom.alpha(), 0.0);
  EXPECT_NEAR(place.frame().bottom(), 194.0, 1e-9);
  EXPECT_DOUBLE_EQ(place.frame().height, length);
  EXPECT_TRUE(Drawing(top).isEmpty()) << "nothing to fade into";
  Window window;
  window.addSubview(table);
  table->setModal(true);
  EXPECT_EQ(window.focusedView(), table.get());
  EXPECT_EQ(place.frame().width, 8.0) << "seen to be focused";
  table->setModal(false);
  EXPECT_EQ(window.focusedView(), nullptr);
  EXPECT_EQ(place.frame().width, 4.0);
  table->setBackgroundColor(Color::redColor());
  EXPECT_GT(Drawing(top).at(5, 0) >> 24, 240u);
  EXPECT_LT(Drawing(top).at(5, 19) >> 24, 200u);
}

}  // namespace
}  // namespace kesu
