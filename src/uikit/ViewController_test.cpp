#include <gtest/gtest.h>
#include <kesu/ui/Application.h>
#include <kesu/ui/NavigationController.h>
#include <kesu/ui/TabBarController.h>
#include <kesu/ui/Window.h>

#include <memory>

#include "uikit/Appearance.h"

namespace kesu {
namespace {

/// Says when its hooks run.
class Home : public ViewController {
 public:
  explicit Home(std::string& heard) : heard_(heard) {}

 protected:
  void viewDidAppear(bool animated) override { heard_ += animated ? "(animated)" : "(hook)"; }
  void viewDidDisappear(bool /*animated*/) override { heard_ += "(hook)"; }

 private:
  std::string& heard_;
};
class Menu : public ViewController {};
class Help : public ViewController {};
class Tabs : public TabBarController {};
/// Calls no hook of its base class.
class OwnTabs : public TabBarController {
 protected:
  void viewDidAppear(bool /*animated*/) override { setSelectedIndex(1); }
  void viewDidDisappear(bool /*animated*/) override { setSelectedIndex(0); }
};

/// Notes the classes without their namespaces.
class ViewControllerTest : public ::testing::Test, private AppearanceObserver {
 protected:
  ViewControllerTest() { setAppearanceObserver(this); }
  ~ViewControllerTest() override { setAppearanceObserver(nullptr); }

  std::string take() { return std::exchange(heard, {}); }

  std::string heard;  // Such as "+Home -Home".
  Menu menu;
  Help help;
  Help other;

 private:
  void note(char sign, ViewController& controller) {
    const std::string& name = controller.className();
    heard += (heard.empty() || heard.back() == ')' ? "" : " ") + std::string(1, sign) +
             name.substr(name.rfind(':') == std::string::npos ? 0 : name.rfind(':') + 1);
  }
  void didAppear(ViewController& controller) override { note('+', controller); }
  void didDisappear(ViewController& controller) override { note('-', controller); }
};

TEST_F(ViewControllerTest, ReportsEachChangeOnceAfterTheHook) {
  Home home(heard);
  home.disappear();
  home.appear(true);
  home.appear();
  EXPECT_EQ(take(), "(animated)+Home");
  home.disappear();
  home.disappear();
  EXPECT_EQ(take(), "(hook)-Home");
}

TEST_F(ViewControllerTest, KeepsItsClassWhileItIsDestroyed) {
  auto home = std::make_unique<Home>(heard);
  home->appear();
  home.reset();
  EXPECT_EQ(take(), "(hook)+Home -Home") << "a class that is gone has no hook";
  Tabs().appear();
  EXPECT_EQ(take(), "+Tabs -Tabs");
  EXPECT_EQ(menu.className(), "kesu::(anonymous namespace)::Menu");
}

TEST_F(ViewControllerTest, ShowsTheSelectedTabOnly) {
  TabBarController tabs;
  tabs.setViewControllers({&menu, &help});
  tabs.setSelectedIndex(1);
  EXPECT_EQ(take(), "");
  tabs.appear();
  EXPECT_EQ(take(), "+Help +TabBarController");
  tabs.setSelectedIndex(1);
  tabs.setSelectedIndex(2);
  EXPECT_EQ(take(), "");
  tabs.setSelectedIndex(0);
  EXPECT_EQ(take(), "-Help +Menu");
  tabs.setViewControllers({&menu});
  EXPECT_EQ(take(), "");
  tabs.setViewControllers({});
  EXPECT_EQ(take(), "-Menu");
  EXPECT_EQ(tabs.selectedViewController(), nullptr);
  tabs.disappear();
  EXPECT_EQ(take(), "-TabBarController");
}

TEST_F(ViewControllerTest, ShowsTheSelectedTabWhateverTheHooksDo) {
  OwnTabs tabs;
  tabs.setViewControllers({&menu, &help});
  tabs.appear();
  EXPECT_EQ(take(), "+Help +OwnTabs");
  tabs.disappear();
  EXPECT_EQ(take(), "-Help -OwnTabs");
  EXPECT_FALSE(menu.isVisible() || help.isVisible());
}

TEST_F(ViewControllerTest, ShowsTheLastOfAStack) {
  NavigationController stack;
  EXPECT_EQ(stack.visibleViewController(), nullptr);
  stack.push(menu);
  stack.appear();
  stack.push(help);
  EXPECT_EQ(take(), "+Menu +NavigationController -Menu +Help");
  EXPECT_EQ(stack.pop(), &help);
  EXPECT_EQ(stack.pop(), nullptr) << "the first one stays";
  EXPECT_EQ(take(), "-Help +Menu");
  stack.disappear();
  EXPECT_EQ(take(), "-Menu -NavigationController");
}

TEST_F(ViewControllerTest, PresentsOneOverTheOther) {
  menu.present(help);
  EXPECT_EQ(take(), "");
  menu.dismissPresented();
  menu.appear();
  menu.present(help);
  menu.present(other);
  EXPECT_EQ(menu.presentedViewController(), &help) << "nothing happens while one is shown";
  help.present(other);
  EXPECT_EQ(take(), "+Menu -Menu +Help -Help +Help");
  EXPECT_EQ(topViewControllerWithRootViewController(&menu), &other);
  menu.dismissPresented();
  EXPECT_EQ(take(), "-Help +Menu") << "all that was shown over it goes";
  EXPECT_EQ(help.presentedViewController(), nullptr);
}

TEST_F(ViewControllerTest, RefusesToPresentInCircles) {
  menu.present(menu);
  menu.present(help);
  help.present(menu);
  EXPECT_EQ(topViewControllerWithRootViewController(&menu), &help);
  other.present(help);
  EXPECT_EQ(other.presentedViewController(), nullptr) << "it is shown elsewhere";
}

TEST_F(ViewControllerTest, ForgetsPresentedControllersThatAreDestroyed) {
  auto home = std::make_unique<Home>(heard);
  menu.appear();
  menu.present(*home);
  home.reset();
  EXPECT_EQ(menu.presentedViewController(), nullptr);
  auto below = std::make_unique<Home>(heard);
  below->present(help);
  below.reset();
  other.present(help);
  EXPECT_EQ(other.presentedViewController(), &help);
}

TEST_F(ViewControllerTest, DismissesWhatIsPresentedOverAScreenWithIt) {
  TabBarController tabs;
  tabs.setViewControllers({&menu, &other});
  tabs.appear();
  menu.present(help);
  take();
  tabs.setSelectedIndex(1);
  EXPECT_EQ(take(), "-Help +Help") << "the presented one, then the other tab";
  tabs.setSelectedIndex(0);
  EXPECT_EQ(take(), "-Help +Help");
  EXPECT_TRUE(help.isVisible() && !other.isVisible());
  tabs.disappear();
  EXPECT_FALSE(help.isVisible());
}

TEST_F(ViewControllerTest, FindsTheTopThroughContainers) {
  NavigationController stack;
  TabBarController tabs;
  tabs.setViewControllers({&stack});
  EXPECT_EQ(topViewControllerWithRootViewController(nullptr), nullptr);
  EXPECT_EQ(topViewControllerWithRootViewController(&stack), &stack);
  stack.push(menu);
  EXPECT_EQ(topViewControllerWithRootViewController(&tabs), &menu);
  menu.present(help);
  EXPECT_EQ(topViewControllerWithRootViewController(&tabs), &help);
  EXPECT_EQ(stack.visibleViewController(), &help);
  stack.present(other);
  EXPECT_EQ(stack.visibleViewController(), &other) << "what is shown over the stack hides the stack";
  EXPECT_EQ(topViewControllerWithRootViewController(&tabs), &other);
  Help ofTheTabs;
  tabs.present(ofTheTabs);
  EXPECT_EQ(topViewControllerWithRootViewController(&tabs), &ofTheTabs);
}

TEST_F(ViewControllerTest, CoversAStackWithWhatItPresents) {
  NavigationController stack;
  stack.push(menu);
  stack.appear();
  take();
  stack.present(help);
  EXPECT_EQ(take(), "-Menu -NavigationController +Help");
  stack.dismissPresented();
  EXPECT_EQ(take(), "-Help +Menu +NavigationController");
}

TEST_F(ViewControllerTest, ShowsTheRootOfTheKeyWindow) {
  Window first;
  first.setRootViewController(&menu);
  EXPECT_EQ(Application::shared().keyWindow(), nullptr);
  first.makeKeyAndVisible();
  first.makeKeyAndVisible();
  EXPECT_EQ(take(), "+Menu");
  {
    Window second;
    second.setRootViewController(&help);
    second.makeKeyAndVisible();
    EXPECT_EQ(take(), "-Menu +Help");
    first.setRootViewController(nullptr);
    second.setRootViewController(&other);
    EXPECT_EQ(take(), "-Help +Help");
    EXPECT_EQ(Application::shared().keyWindow(), &second);
  }
  EXPECT_EQ(Application::shared().keyWindow(), nullptr);
}

}  // namespace
}  // namespace kesu
