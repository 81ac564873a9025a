#include "uikit/WindowInput.h"

#include <gtest/gtest.h>
#include <kesu/ui/Button.h>
#include <kesu/ui/Window.h>

#include <cmath>
#include <random>

#include "uikit/Animator.h"
#include "uikit/GestureRecognizer.h"
#include "uikit/InputTargets.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

/// A button that records what happens to it: "+b" focused, "-b" unfocused, "b<" pressed, "b>" released, "bx" cancelled,
/// "b!" activated.
class InputProbe : public Button {
 public:
  InputProbe(std::string name, const Rect& frame, std::string& heard) : Button(frame), heard_(heard) {
    setTitle(std::move(name));
  }

  void didUpdateFocus() override { record((isFocused() ? "+" : "-") + title()); }
  void pressesBegan(RemoteButton /*button*/) override { record(title() + "<"); }
  void pressesEnded(RemoteButton /*button*/) override { record(title() + ">"); }
  void pressesCancelled(RemoteButton /*button*/) override {
    record(title() + "x");
    if (onCancel) {
      onCancel();
    }
  }
  void activate() override {
    record(title() + "!");
    Button::activate();
  }

  std::function<void()> onCancel;

 private:
  void record(const std::string& what) { heard_ += what + " "; }

  std::string& heard_;
};

/// A backdrop over the whole screen, in it a card with three buttons in a row, a and b and c.
class WindowInputTest : public ::testing::Test, private GestureRecognizerDelegate {
 protected:
  WindowInputTest() {
    backdrop->setModal(true);
    backdrop->addSubview(card);
    a = add("a", 0.0);
    b = add("b", 200.0);
    c = add("c", 400.0);
    listen(*backdrop, "menu");
  }

  std::shared_ptr<InputProbe> add(const std::string& name, double x) {
    auto button = std::make_shared<InputProbe>(name, Rect{x, 0.0, 100.0, 50.0}, heard);
    card->addSubview(button);
    return button;
  }

  /// Shows the backdrop; the focus lies on the first button then.
  void open() {
    window.addSubview(backdrop);
    input.updateFocus();
    heard.clear();
  }

  std::shared_ptr<TapGestureRecognizer> listen(View& view, const std::string& name) {
    auto tap = std::make_shared<TapGestureRecognizer>([this, name](GestureRecognizer& one) {
      heard += name + (one.state() == GestureRecognizer::State::Ended ? "! " : "? ");
    });
    tap->setAllowedPressTypes({RemoteButton::Menu});
    tap->setDelegate(this);
    GestureRecognizer::add(view, tap);
    return tap;
  }

  void listenToSwipes(View& view, SwipeDirection direction, const std::string& name) {
    GestureRecognizer::add(view, std::make_shared<SwipeGestureRecognizer>(
                                     direction, [this, name](GestureRecognizer&) { heard += name + "! "; }));
  }

  bool click(RemoteButton button) {
    const bool began = input.press(button, PressPhase::Began);
    return input.press(button, PressPhase::Ended) && began;
  }
  std::string extract() { return std::exchange(heard, {}); }

  std::string heard;
  bool mayTouch = true;
  std::function<void()> onTouch;
  std::vector<View*> touched;
  Window window;
  WindowInput& input = WindowInput::of(window);
  std::shared_ptr<View> backdrop = std::make_shared<View>(Rect{0.0, 0.0, 1920.0, 1080.0});
  std::shared_ptr<View> card = std::make_shared<View>(Rect{100.0, 900.0, 500.0, 180.0});
  std::shared_ptr<InputProbe> a, b, c;

 private:
  bool shouldReceiveTouch(GestureRecognizer& /*recognizer*/, View& view) override {
    touched.push_back(&view);
    if (onTouch) {
      onTouch();
    }
    return mayTouch;
  }
};

TEST_F(WindowInputTest, ConsumesPressesOnlyWhileAViewIsModal) {
  EXPECT_FALSE(click(RemoteButton::Select) || click(RemoteButton::Menu) || click(RemoteButton::Up));
  EXPECT_FALSE(input.swipe(SwipeDirection::Left) || input.tap({5.0, 5.0}));
  window.addSubview(backdrop);
  EXPECT_EQ(window.focusedView(), a.get()) << "the first in reading order";
  EXPECT_EQ(extract(), "+a ");
  EXPECT_TRUE(click(RemoteButton::PlayPause)) << "what nobody waits for is swallowed";
  EXPECT_TRUE(input.swipe(SwipeDirection::Up));
  EXPECT_EQ(extract(), "");
  backdrop->setHidden(true);
  EXPECT_EQ(frontmostModal(window), nullptr);
  EXPECT_EQ(window.focusedView(), nullptr);
  EXPECT_FALSE(a->isFocused());
  EXPECT_EQ(extract(), "-a ");
}

TEST_F(WindowInputTest, MovesTheFocusByArrows) {
  open();
  click(RemoteButton::Right);
  EXPECT_EQ(extract(), "-a +b ");
  input.press(RemoteButton::Right, PressPhase::Began);
  input.press(RemoteButton::Right, PressPhase::Began);
  input.press(RemoteButton::Right, PressPhase::Ended);
  EXPECT_EQ(extract(), "-b +c ") << "a held arrow goes on, to the end";
  EXPECT_TRUE(click(RemoteButton::Up));
  EXPECT_EQ(window.focusedView(), c.get());
  EXPECT_EQ(ViewDrawing::drawingOrder(*card).back(), c.get());
  window.setFocusedView(a.get());
  EXPECT_EQ(ViewDrawing::drawingOrder(*card).back(), a.get()) << "drawn over its neighbours";
  EXPECT_EQ(card->subviews().back(), c) << "but in its place";
}

TEST_F(WindowInputTest, FocusesOnlyWhatCanBeUsed) {
  open();
  const std::vector<std::function<void(bool)>> switches = {
      [&](bool on) { b->setHidden(!on); },
      [&](bool on) { b->setAlpha(on ? 1.0 : 0.0); },
      [&](bool on) { b->setUserInteractionEnabled(on); },
      [&](bool on) {
        b->setFrame({200.0, 0.0, on ? 100.0 : 0.0, 50.0});
      },
      [&](bool on) { on ? card->addSubview(b) : b->removeFromSuperview(); },
  };
  for (const auto& turn : switches) {
    window.setFocusedView(b.get());
    EXPECT_EQ(window.focusedView(), b.get());
    turn(false);
    EXPECT_NE(window.focusedView(), b.get());
    EXPECT_FALSE(b->isFocused());
    window.setFocusedView(b.get());
    EXPECT_NE(window.focusedView(), b.get());
    turn(true);
  }
  card->setUserInteractionEnabled(false);
  EXPECT_EQ(window.focusedView(), nullptr) << "nothing inside of it can be";
  View other({0.0, 0.0, 10.0, 10.0});
  window.setFocusedView(&other);
  card->setUserInteractionEnabled(true);
  EXPECT_NE(window.focusedView(), nullptr);
}

TEST_F(WindowInputTest, MovesTheFocusToTheNeighbour) {
  open();
  window.setFocusedView(c.get());
  c->removeFromSuperview();
  EXPECT_EQ(window.focusedView(), b.get());
  auto again = add("d", 190.0);
  b->removeFromSuperview();
  b.reset();
  EXPECT_EQ(window.focusedView(), again.get()) << "what comes instead of it";
  auto front = std::make_shared<View>(Rect{0.0, 0.0, 300.0, 300.0});
  auto only = std::make_shared<InputProbe>("o", Rect{0.0, 0.0, 10.0, 10.0}, heard);
  front->addSubview(only);
  front->setModal(true);
  window.addSubview(front);
  EXPECT_EQ(frontmostModal(window), front.get());
  EXPECT_EQ(window.focusedView(), only.get()) << "the frontmost modal view has it";
  front->removeFromSuperview();
  EXPECT_NE(window.focusedView(), nullptr);
}

TEST_F(WindowInputTest, ActivatesOnceWhenSelectIsReleased) {
  open();
  click(RemoteButton::Select);
  EXPECT_EQ(extract(), "a< a> a! ");
  input.press(RemoteButton::Select, PressPhase::Began);
  input.press(RemoteButton::Select, PressPhase::Began);
  EXPECT_EQ(extract(), "a< ") << "a held button begins once";
  input.press(RemoteButton::Select, PressPhase::Cancelled);
  EXPECT_FALSE(input.press(RemoteButton::Select, PressPhase::Ended));
  EXPECT_EQ(extract(), "ax ");
  input.press(RemoteButton::Select, PressPhase::Began);
  click(RemoteButton::Right);
  input.press(RemoteButton::Select, PressPhase::Ended);
  EXPECT_EQ(extract(), "a< ax -a +b ") << "the focus has left what was pressed";
  input.press(RemoteButton::Select, PressPhase::Began);
  input.cancelPresses();
  input.press(RemoteButton::Select, PressPhase::Ended);
  EXPECT_EQ(extract(), "b< bx ");
}

TEST_F(WindowInputTest, LeavesTheEndOfAPressToTheHostWhereItBegan) {
  EXPECT_FALSE(input.press(RemoteButton::Menu, PressPhase::Began));
  open();
  EXPECT_FALSE(input.press(RemoteButton::Menu, PressPhase::Ended));
  EXPECT_EQ(extract(), "") << "what the host was asked for closes nothing here";
  EXPECT_TRUE(input.press(RemoteButton::Menu, PressPhase::Began));
  backdrop->removeFromSuperview();
  EXPECT_TRUE(input.press(RemoteButton::Menu, PressPhase::Ended));
  EXPECT_EQ(extract(), "-a ") << "and the other way round";
}

TEST_F(WindowInputTest, ReachesExactlyOneRecogniser) {
  open();
  click(RemoteButton::Menu);
  EXPECT_EQ(extract(), "menu! ");
  listen(*card, "card");
  auto side = std::make_shared<View>(Rect{0.0, 0.0, 50.0, 50.0});
  listen(*side, "side");
  backdrop->addSubview(side);
  click(RemoteButton::Menu);
  EXPECT_EQ(extract(), "card! ") << "around the focused view first";
  card->setUserInteractionEnabled(false);
  click(RemoteButton::Menu);
  EXPECT_EQ(extract(), "-a side! ") << "else the frontmost";
  backdrop->setAlpha(0.0);
  EXPECT_TRUE(click(RemoteButton::Menu)) << "what fades away takes presses, but does nothing with them";
  EXPECT_EQ(extract(), "");
}

TEST_F(WindowInputTest, ForwardsSwipes) {
  open();
  auto table = std::make_shared<View>(Rect{0.0, 60.0, 500.0, 100.0});
  listenToSwipes(*table, SwipeDirection::Left, "left");
  card->addSubview(table);
  input.swipe(SwipeDirection::Left);
  EXPECT_EQ(extract(), "left! ");
  listenToSwipes(*card, SwipeDirection::Left, "nearer");
  input.swipe(SwipeDirection::Left);
  EXPECT_EQ(extract(), "nearer! ");
  input.swipe(SwipeDirection::Right);
  EXPECT_EQ(extract(), "-a +b ") << "without a recogniser it moves the focus";
}

TEST_F(WindowInputTest, TapsTheViewAtThePoint) {
  open();
  EXPECT_TRUE(input.tap({320.0, 920.0}));
  EXPECT_EQ(extract(), "-a +b b! ");
  EXPECT_EQ(std::exchange(touched, {}), (std::vector<View*>{b.get()})) << "the backdrop is asked all the same";
  input.tap({10.0, 10.0});
  EXPECT_EQ(extract(), "menu! ");
  EXPECT_EQ(touched.back(), backdrop.get());
  mayTouch = false;
  input.tap({110.0, 1070.0});
  EXPECT_EQ(touched.back(), card.get());
  b->setUserInteractionEnabled(false);
  input.tap({320.0, 920.0});
  EXPECT_EQ(extract(), "-b +c ");
}

TEST_F(WindowInputTest, DropsATargetThatACallbackRemoved) {
  open();
  a->onCancel = [&] { backdrop->removeFromSuperview(); };
  input.press(RemoteButton::Select, PressPhase::Began);
  input.press(RemoteButton::Right, PressPhase::Began);
  EXPECT_EQ(extract(), "a< ax -a ");
  EXPECT_FALSE(b->isFocused());
  open();
  onTouch = [&] {
    backdrop->removeFromSuperview();
    card->removeFromSuperview();
    card.reset();
    backdrop.reset();
  };
  EXPECT_TRUE(input.tap({110.0, 1070.0})) << "asking may close it, too";
  EXPECT_EQ(window.focusedView(), nullptr);
}

TEST_F(WindowInputTest, SurvivesWhateverACallbackRemoves) {
  open();
  a->setAction([&](Button&) {
    backdrop->removeFromSuperview();
    card->removeAllSubviews();
    backdrop.reset();
    card.reset();
    a.reset();
  });
  input.press(RemoteButton::Select, PressPhase::Began);
  input.press(RemoteButton::Select, PressPhase::Ended);
  EXPECT_EQ(window.focusedView(), nullptr);
  EXPECT_EQ(frontmostModal(window), nullptr);
  EXPECT_TRUE(window.subviews().empty());
  auto next = std::make_shared<View>(Rect{0.0, 0.0, 100.0, 100.0});
  next->setModal(true);
  GestureRecognizer::add(*next, std::make_shared<SwipeGestureRecognizer>(SwipeDirection::Up, [&](GestureRecognizer&) {
    std::exchange(next, nullptr)->removeFromSuperview();
  }));
  window.addSubview(next);
  EXPECT_TRUE(input.swipe(SwipeDirection::Up));
  EXPECT_EQ(next, nullptr);
}

TEST(WindowTest, MayBeDestroyedByItsInput) {
  const std::function<void(Window&)> inputs[] = {
      [](Window& window) { WindowInput::of(window).press(RemoteButton::Select, {}); },
      [](Window& window) { WindowInput::of(window).press(RemoteButton::Menu, {}); },
      [](Window& window) { WindowInput::of(window).swipe(SwipeDirection::Up); },
      [](Window& window) {
        WindowInput::of(window).tap({10.0, 10.0});
      }};
  for (const auto& input : inputs) {
    auto window = std::make_unique<Window>();
    const auto leave = [&window](auto&) { window.reset(); };
    const auto button = std::make_shared<Button>(Rect{0.0, 0.0, 100.0, 100.0});
    button->setModal(true);
    button->setAction(leave);
    const auto menu = std::make_shared<TapGestureRecognizer>(leave);
    menu->setAllowedPressTypes({RemoteButton::Menu});
    GestureRecognizer::add(*button, menu);
    GestureRecognizer::add(*button, std::make_shared<SwipeGestureRecognizer>(SwipeDirection::Up, leave));
    window->addSubview(button);
    Window& used = *window;
    input(used);
    if (window != nullptr) {
      WindowInput::of(used).press(RemoteButton::Select, PressPhase::Ended);
    }
    if (window != nullptr) {
      WindowInput::of(used).press(RemoteButton::Menu, PressPhase::Ended);
    }
    EXPECT_EQ(window, nullptr);
  }
}

/// Does anything to the views, out of callbacks too.
class Monkey {
 public:
  Monkey(Window& window, View& modal) : window_(window), modal_(modal) {}

  void step() {
    const ViewPtr view = views_.empty() ? nullptr : views_[number(views_.size())];
    const double amount = static_cast<double>(number(400));
    const auto button = static_cast<RemoteButton>(number(7));
    const std::vector<std::function<void()>> deeds = {
        [&] { add(); },
        [&] { modal_.setModal(number(20) != 0); },
        [&] { WindowInput::of(window_).press(button, static_cast<PressPhase>(number(3))); },
        [&] { WindowInput::of(window_).press(button, PressPhase::Began); },
        [&] {
          WindowInput::of(window_).tap({amount, static_cast<double>(number(400))});
        },
        [&] { WindowInput::of(window_).swipe(static_cast<SwipeDirection>(number(4))); },
        [&] { Animator::shared().tick(now_ += amount / 1000.0); },
        [&] { view != nullptr ? views_[number(views_.size())]->addSubview(view) : add(); },
        [&] { view != nullptr ? view->setHidden(number(3) == 0) : add(); },
        [&] { animate(amount / 500.0, [&] { view != nullptr ? view->setAlpha(amount / 300.0 - 0.2) : add(); }); },
        [&] {
          animate(
              0.2,
              [&] {
                view != nullptr ? view->setCenter({amount, amount}) : add();
              },
              [this](bool) { remove(); });
        },
        [&] { view != nullptr ? window_.setFocusedView(view.get()) : add(); },
        [&] { remove(); },
    };
    deeds[number(deeds.size())]();
  }

 private:
  std::size_t number(std::size_t below) { return random_() % below; }

  void add() {
    auto button = std::make_shared<Button>(Rect{static_cast<double>(number(400)), static_cast<double>(number(400)),
                                                static_cast<double>(number(90)), 50.0});
    button->setAction([this](Button&) { step(); });
    GestureRecognizer::add(*button, std::make_shared<SwipeGestureRecognizer>(SwipeDirection::Left,
                                                                             [this](GestureRecognizer&) { remove(); }));
    (views_.empty() || number(2) == 0 ? modal_ : *views_[number(views_.size())]).addSubview(button);
    views_.push_back(button);
  }

  void remove() {
    if (!views_.empty()) {
      const std::size_t index = number(views_.size());
      std::exchange(views_[index], views_.back())->removeFromSuperview();
      views_.pop_back();
    }
  }

  Window& window_;
  View& modal_;
  std::vector<ViewPtr> views_;
  std::minstd_rand random_{5};
  double now_ = 0.0;
};

std::size_t countFocused(const View& view) {
  std::size_t count = view.isFocused() ? 1 : 0;
  for (const ViewPtr& subview : view.subviews()) {
    count += countFocused(*subview);
  }
  return count;
}

TEST_F(WindowInputTest, HasOneFocusWhateverHappens) {
  backdrop->removeAllSubviews();
  window.addSubview(backdrop);
  Monkey monkey(window, *backdrop);
  int withFocus = 0;
  for (int step = 0; step < 5000; ++step) {
    monkey.step();
    View* focused = window.focusedView();
    withFocus += focused != nullptr ? 1 : 0;
    ASSERT_EQ(countFocused(window), focused != nullptr ? 1u : 0u) << step;
    ASSERT_TRUE(focused == nullptr || (focused->isFocused() && frontmostModal(window)->contains(*focused))) << step;
    ASSERT_TRUE(std::isfinite(ViewDrawing::extractDamage(*backdrop).width) &&
                ViewDrawing::drawnExtent(*backdrop).width < 1e6)
        << step;
  }
  EXPECT_GT(withFocus, 1000);
  while (Animator::shared().isRunning()) {
    Animator::shared().finishAll();
  }
}

}  // namespace
}  // namespace kesu
