#include <gtest/gtest.h>
#include <kesu/graphics/Color.h>
#include <kesu/ui/Label.h>
#include <kesu/ui/Overlay.h>
#include <kesu/ui/View.h>

#include "facade/Wiring.h"
#include "testing/FontRelease.h"
#include "testing/MessageScreen.h"
#include "testing/SdkFixture.h"

namespace kesu {
namespace {

/// The whole library, with a host's screen over which messages appear.
class MessagesTest : public testing::SdkFixture {
 protected:
  bool answer(const std::string& path, const std::string& reply) {
    return testing::answerOldest(platform, path, reply);
  }

  /// Lets the service answer a show with these headers and its first message.
  void deliver(const char* metadataList) {
    platform.settle();
    ASSERT_TRUE(answer("/api/inapp/newUnFetched/", std::string(R"({"metadatalist":)") + metadataList + "}"));
    ASSERT_TRUE(answer("/api/inapp/getmessage/",
                       R"({"payload":{"title":"New season","msg":"Watch it now","templateId":"p","templateData":
                       "{\"buttons\":[[\"Watch\",\"tv://watch\",\"#112233\",\"#ffffff\"]]}"}})"));
    overlay.layers(5.0);
    overlay.layers(5.4);  // It has slid in.
    platform.settle();
  }

  void press(RemoteButton button) {
    EXPECT_TRUE(overlay.press(button, PressPhase::Began));
    EXPECT_TRUE(overlay.press(button, PressPhase::Ended));
    platform.settle();
  }

  void show() {
    Kesu::showUnreadInAppNotificationUIWithCompletionHandler(
        [this](const KesuInAppStatus& status) { statuses.push_back(status); });
  }

  Overlay overlay;
  std::vector<KesuInAppStatus> statuses;
};

constexpr const char* kTwoHeaders = R"([{"mid":"a","cid":"c"},{"mid":"b","cid":"d"}])";

TEST_F(MessagesTest, ReportsAPressedButtonToHostAndCollector) {
  launch();
  answerAll(200);
  std::vector<KesuInAppStatus> observed;
  Kesu::registerForButtonClickOnInAppMessageWithSelector(
      [&](const KesuInAppStatus& status) { observed.push_back(status); });
  show();
  EXPECT_FALSE(overlay.isModal());
  deliver(kTwoHeaders);
  ASSERT_TRUE(overlay.isModal());
  forgetRequests();
  press(RemoteButton::Select);
  EXPECT_EQ(platform.urlOpener.urls, std::vector<std::string>{"tv://watch"});
  ASSERT_EQ(statuses.size(), 1U);
  EXPECT_EQ(statuses[0], (KesuInAppStatus{0, "a", "c", "Watch", {}, 2, {}}));
  EXPECT_EQ(observed, statuses);
  EXPECT_EQ(destinations(), "ne");
  EXPECT_EQ(text(body(0), "action"), "cta");
  EXPECT_EQ(text(body(0), "btnName"), "Watch");
  EXPECT_EQ(text(body(1), "~e"), "Kesu.InAppCallToAction");
}

TEST_F(MessagesTest, IgnoresShowsWhileOneIsUpAndShowsAgainAfterwards) {
  launch();
  show();
  show();
  deliver(kTwoHeaders);
  EXPECT_FALSE(answer("newUnFetched/", "{}")) << "one request";
  show();
  platform.settle();
  EXPECT_FALSE(answer("newUnFetched/", "{}"));
  Kesu::dismissInAppNotificationUI(false);
  EXPECT_FALSE(overlay.isModal());
  Kesu::showInAppNotificationUIForDisplayMessages(KesuInAppMessageType::All, Color::blueColor(), {});
  deliver("[]");
  EXPECT_TRUE(overlay.isModal());
  endProcess();
  platform.settle();
  EXPECT_FALSE(overlay.isModal()) << "nothing of the library stays";
}

TEST_F(MessagesTest, ShowsAgainWhenTheHostHasDestroyedItsWindow) {
  auto window = std::make_unique<Window>();
  window->makeKeyAndVisible();
  launch();
  show();
  deliver(kTwoHeaders);
  EXPECT_FALSE(window->subviews().empty());
  window.reset();
  EXPECT_FALSE(overlay.isModal());
  show();
  platform.settle();
  ASSERT_TRUE(answer("newUnFetched/", R"({"metadatalist":[]})"));
  EXPECT_TRUE(overlay.isModal());
}

struct Host : ViewController, KesuInAppMessageDelegate {
  void inAppMessageButtonHandlerWithIndex(std::int64_t, const std::string&, const std::string&, std::int64_t) override {
  }
};

struct ShowRow {
  std::function<void(ViewController&)> show;
  KesuInAppMessageType type;
  std::vector<std::optional<Color>> colors;  // Text, buttons, bar, counter.
  bool isForScreen;
};

void expectShown(const KesuInAppPresenter& presenter, const ShowRow& row, const Host& host) {
  const KesuInAppPresenter::Colors& colors = presenter.colors();
  EXPECT_EQ((std::vector{colors.buttonTextColor, colors.buttonBgColor, colors.messageNavigationBarColor,
                         colors.messageTextColor}),
            row.colors);
  EXPECT_EQ(presenter.inappMessageType(), row.type);
  EXPECT_EQ(presenter.rootViewController(), row.isForScreen ? &host : nullptr);
  EXPECT_EQ(presenter.delegate(), row.isForScreen ? &host : nullptr);
  EXPECT_EQ(presenter.completionBlock() == nullptr, row.isForScreen);
}

TEST_F(MessagesTest, ReadsTypeColoursAndListenerFromEachFormOfAShow) {
  using MessageType = KesuInAppMessageType;
  const Color one{0.1}, two{0.2}, three{0.3}, four{0.4};
  const Color blue = Color::blueColor(), white = Color::white();
  const Kesu::InAppHandler handler = [](const KesuInAppStatus&) {};
  const ShowRow rows[] = {
      {[&](auto& screen) { Kesu::showInAppNotificationUI(&screen, MessageType::All, one, two, three, four); },
       MessageType::All,
       {one, two, three, four},
       true},
      {[](auto& screen) { Kesu::showUnreadInAppNotificationUI(&screen); },
       MessageType::Unread,
       {blue, white, white, blue},
       true},
      {[&](auto&) { Kesu::showInAppNotificationUIForDisplayMessages(MessageType::All, one, handler); },
       MessageType::All,
       {one, {}, {}, {}},
       false},
      {[&](auto&) {
         Kesu::showInAppNotificationUIForDisplayMessages(MessageType::Read, one, two, three, four, handler);
       },
       MessageType::Read,
       {one, two, three, four},
       false},
      {[&](auto&) { Kesu::showUnreadInAppNotificationUIWithCompletionHandler(handler); },
       MessageType::Unread,
       {white, {}, {}, {}},
       false}};
  launch();
  Host host;
  for (const ShowRow& row : rows) {
    SCOPED_TRACE(&row - rows);
    row.show(host);
    expectShown(wiring().presenter, row, host);
    rows[0].show(host);
    rows[2].show(host);
    expectShown(wiring().presenter, row, host);  // Shows that came meanwhile changed nothing.
    Kesu::dismissInAppNotificationUI(false);
    platform.settle();
  }
}

TEST_F(MessagesTest, AddsABadgeOnceTheCountIsThere) {
  launch();
  const auto shelf = std::make_shared<View>();
  auto icon = std::make_shared<View>(Rect{100.0, 100.0, 50.0, 50.0});
  shelf->addSubview(icon);
  Kesu::addBadge(nullptr);
  Kesu::addBadge(icon.get());
  Kesu::addBadge(icon.get());
  platform.settle();
  ASSERT_TRUE(answer("/count/", R"({"count":3})"));
  ASSERT_EQ(shelf->subviews().size(), 2U);
  const auto badge = std::dynamic_pointer_cast<Label>(shelf->subviews()[1]);
  EXPECT_EQ(badge->text(), "3");
  EXPECT_EQ(badge->frame(), (Rect{137.0, 87.0, 26.0, 26.0}));
  icon->removeFromSuperview();
  icon.reset();
  ASSERT_TRUE(answer("/count/", R"({"count":3})"));
  EXPECT_EQ(shelf->subviews().size(), 1U) << "the view is destroyed";
}

}  // namespace
}  // namespace kesu
