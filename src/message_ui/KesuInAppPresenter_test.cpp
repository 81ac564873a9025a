#include "message_ui/KesuInAppPresenter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "graphics/TextLayout.h"
#include "message_ui/SensibleOptions.h"
#include "messaging/ButtonClicks.h"
#include "support/KesuPriorityLogger.h"
#include "testing/FontRelease.h"
#include "testing/MessageScreen.h"
#include "testing/RecordingPoster.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

using testing::bodyReply;
using testing::buttonEntries;
using testing::headersReply;

class PresenterTest : public ::testing::Test {
 protected:
  PresenterTest() {
    presenter().setCallbacks([this](const KesuInAppStatus& status) { told.push_back(status); }, nullptr);
  }

  KesuInAppPresenter& presenter() { return *screen.presenter; }

  /// Answers the oldest open request for a path.
  bool answer(const std::string& path, const std::string& reply, int status = 200) {
    const auto requests = platform.http.requests();
    for (std::size_t i = 0; i < requests.size(); ++i) {
      if (requests[i].url.find(path) != std::string::npos && platform.http.answer(i, status, reply)) {
        platform.settle();
        return true;
      }
    }
    return false;
  }

  void present(KesuInAppMessageType type = KesuInAppMessageType::Unread) {
    presenter().presentWithController(nullptr, type);
    platform.settle();
  }

  /// Presents messages and answers with the first one's body.
  void show(const std::vector<std::string>& identifiers, const std::string& body) {
    present();
    ASSERT_TRUE(answer("newUnFetched/", headersReply(identifiers)));
    ASSERT_TRUE(answer("getmessage/", body));
    pass(0.4);
  }

  void pass(double seconds) {
    Animator::shared().tick(now);
    now += seconds;
    Animator::shared().tick(now);
    platform.settle();
  }

  bool isUp() { return presenter().popupController() != nullptr && !screen.window.subviews().empty(); }

  std::string focusedTitle() {
    const auto* button = dynamic_cast<const Button*>(screen.window.focusedView());
    return button != nullptr ? button->title() : "<none>";
  }

  /// All texts in the popup.
  std::string texts(const View& view) {
    const auto* label = dynamic_cast<const Label*>(&view);
    std::string found = label != nullptr ? label->text() + "|" : "";
    for (const ViewPtr& inside : view.subviews()) {
      found += view.isHidden() ? "" : texts(*inside);
    }
    return found;
  }

  const ImageView* picture(const View& view) {
    if (const auto* found = dynamic_cast<const ImageView*>(&view)) {
      return found;
    }
    for (const ViewPtr& inside : view.subviews()) {
      if (const ImageView* found = picture(*inside)) {
        return found;
      }
    }
    return nullptr;
  }

  /// Bodies of records for the collector's table of notifications, receipts left out.
  std::vector<Dictionary> callsToAction() {
    std::vector<Dictionary> found;
    for (const HttpRequest& request : platform.http.requests()) {
      const auto body = parseJson(request.body);
      const std::string* action = body ? body->dictionary()->findText("action") : nullptr;
      if (action != nullptr && *action == "cta") {
        found.push_back(*body->dictionary());
      }
    }
    return found;
  }

  testing::ScopedPlatform platform;
  testing::RecordingPoster poster;
  testing::MessageScreen screen{platform.platform};
  std::vector<KesuInAppStatus> told;
  double now = 100.0;
};

const Dictionary kTwoButtons{{"buttons", buttonEntries({{"Watch", "tv://watch"}, {"Later", ""}})}};

TEST_F(PresenterTest, FetchesAndShowsTheFirstMessage) {
  int calls = 0;
  KesuInAppOptions options;
  options.willPresent = [&] { EXPECT_EQ(++calls, 1); };
  options.didPresent = [&] { EXPECT_EQ(++calls, 2); };
  presenter().setOptions(options);
  present();
  EXPECT_TRUE(presenter().isInAppShown());
  EXPECT_FALSE(isUp());
  ASSERT_TRUE(answer("newUnFetched/", headersReply({"a", "b"})));
  EXPECT_FALSE(isUp());
  ASSERT_TRUE(answer("getmessage/", bodyReply("Title", "Text", kTwoButtons)));
  pass(0.4);
  ASSERT_TRUE(isUp());
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(presenter().showIndex(), 0);
  const View& card = presenter().popupController()->popupView();
  EXPECT_EQ(texts(card), "Title|Text|Showing 1 of 2 in-app messages|");
  EXPECT_EQ(card.accessibility().role, AccessibilityInfo::Role::Dialog);
  EXPECT_EQ(card.accessibility().label, "Title");
  const double height = std::min(presenter().contentHeight(), presenter().visibleHeight());
  EXPECT_EQ(presenter().tableView()->bounds().size(), (Size{580.0, height}));
  EXPECT_EQ(presenter().tableView()->backgroundColor(), Color::white());
  EXPECT_EQ(card.bounds().height, height + 80.0 + 80.0);
  EXPECT_NEAR(card.presented().center.y + card.bounds().height / 2.0, 1080.0, 1e-9);
  EXPECT_EQ(focusedTitle(), "Watch");
}

TEST_F(PresenterTest, ShowsTheEmptyStateWhateverGoesWrongWithHeaders) {
  for (const auto& [reply, status] : {std::pair<std::string, int>{"", 500},
                                      {R"({"metadatalist":[]})", 200},
                                      {"no json", 200},
                                      {R"({"metadatalist":[1,"x",null]})", 200}}) {
    present();
    ASSERT_TRUE(answer("newUnFetched/", reply, status));
    pass(0.4);
    ASSERT_TRUE(isUp()) << reply;
    EXPECT_EQ(texts(presenter().popupController()->popupView()), "No messages to show.|");
    EXPECT_EQ(presenter().popupController()->popupView().bounds().height, 48.0) << "nothing else is drawn";
    screen.press(RemoteButton::Menu);
    EXPECT_FALSE(presenter().isInAppShown());
    pass(0.4);
    EXPECT_TRUE(screen.window.subviews().empty());
  }
}

TEST_F(PresenterTest, LoadsFontsOnTheWorkerAndWaitsForThem) {
  releaseFonts();
  platform.defaults.set("midcidArray", Array());
  presenter().presentWithController(nullptr, KesuInAppMessageType::Read);
  platform.mainLoop.runAll();
  EXPECT_FALSE(areFontsReady());
  EXPECT_FALSE(isUp());
  platform.settle();
  EXPECT_TRUE(areFontsReady());
  EXPECT_TRUE(isUp());
}

TEST_F(PresenterTest, StartsWhereItsRuleSays) {
  Array kept;
  for (const bool isRead : {true, false, true, false}) {
    kept.push_back(Dictionary{{"mid", "m" + std::to_string(kept.size())}, {"cid", "c"}, {"contentRead", isRead}});
  }
  platform.defaults.set("midcidArray", kept);
  present(KesuInAppMessageType::Read);
  EXPECT_EQ(presenter().showIndex(), 2) << "two read ones in front of the last unread one";
  ASSERT_TRUE(answer("getmessage/", bodyReply("Title", "Text")));
  EXPECT_EQ(texts(*presenter().bars()->bottomBarView()), "Showing 3 of 4 in-app messages|");
}

TEST_F(PresenterTest, PagesAndReports) {
  show({"a", "b", "c"}, bodyReply("A", "Text", kTwoButtons));
  const View* next = presenter().bars()->focusAfter(kNextTag);
  screen.press(RemoteButton::Down);
  EXPECT_EQ(focusedTitle(), "\u276F") << "down to the only arrow, though it lies aside";
  screen.press(RemoteButton::Select);
  EXPECT_TRUE(told.empty()) << "not before the message is there";
  ASSERT_TRUE(answer("getmessage/", bodyReply("B", "Text", {{"canvas_bgColor", "#102030"}})));
  pass(0.7);
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0], (KesuInAppStatus{11, "b", "c-b", {}, {}, 3, {}}));
  EXPECT_EQ(texts(presenter().popupController()->popupView()), "B|Text|Showing 2 of 3 in-app messages|");
  EXPECT_EQ(presenter().tableView()->backgroundColor(), (Color{16 / 255.0, 32 / 255.0, 48 / 255.0, 1.0}));
  EXPECT_EQ(screen.window.focusedView(), next) << "the same arrow, which stayed";
  EXPECT_EQ(presenter().popupController()->popupView().bounds().height, presenter().tableView()->bounds().height + 80.0)
      << "no buttons";
  screen.window.swipe(SwipeDirection::Left);
  ASSERT_TRUE(answer("getmessage/", bodyReply("C", "Text")));
  EXPECT_EQ(focusedTitle(), "\u276E") << "at the end the other arrow";
  screen.window.swipe(SwipeDirection::Left);
  EXPECT_EQ(told.size(), 2U) << "nothing at the end";
  screen.window.swipe(SwipeDirection::Right);
  platform.settle();
  ASSERT_EQ(told.size(), 3U) << "from the cache";
  EXPECT_EQ(told[2], (KesuInAppStatus{10, "b", "c-b", {}, {}, 3, {}}));
}

TEST_F(PresenterTest, DropsWhatComesLate) {
  present();
  presenter().dismissViewController(true);
  ASSERT_TRUE(answer("newUnFetched/", headersReply({"a"})));
  EXPECT_FALSE(answer("getmessage/", "")) << "given up";
  present();
  ASSERT_TRUE(answer("newUnFetched/", headersReply({"a", "b", "c"})));
  presenter().dismissViewController(false);
  ASSERT_TRUE(answer("getmessage/", bodyReply("Late", "")));
  EXPECT_TRUE(screen.window.subviews().empty());
  EXPECT_FALSE(presenter().isInAppShown());
  show({"x", "y", "z"}, bodyReply("X", ""));
  screen.press(RemoteButton::Select);
  screen.press(RemoteButton::Select);
  ASSERT_TRUE(answer("getmessage/", bodyReply("Y", "")));
  EXPECT_EQ(presenter().model()->title, "X") << "paged on meanwhile";
  ASSERT_TRUE(answer("getmessage/", bodyReply("Z", "")));
  EXPECT_EQ(presenter().model()->title, "Z");
  EXPECT_EQ(told.size(), 1U);
}

TEST_F(PresenterTest, KeepsTheMessageBeforeWhenABodyCannotBeHad) {
  show({"a", "b"}, bodyReply("A", "Text"));
  screen.press(RemoteButton::Select);
  ASSERT_TRUE(answer("getmessage/", "", 500));
  EXPECT_EQ(texts(presenter().popupController()->popupView()), "A|Text|Showing 2 of 2 in-app messages|");
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0].messageID, "b");
}

TEST_F(PresenterTest, ClosesAndShowsAgain) {
  int dismissals = 0;
  KesuInAppOptions options;
  options.willDismiss = [&] { EXPECT_EQ(++dismissals, 1); };
  options.didDismiss = [&] { EXPECT_EQ(++dismissals, 2); };
  presenter().setOptions(options);
  show({"a"}, bodyReply("A", "Text"));
  EXPECT_EQ(focusedTitle(), "<none>");
  screen.press(RemoteButton::Menu);
  EXPECT_FALSE(presenter().isInAppShown());
  EXPECT_EQ(presenter().popupController(), nullptr);
  EXPECT_FALSE(presenter().model().has_value());
  EXPECT_EQ(presenter().showIndex(), 0);
  EXPECT_EQ(dismissals, 1);
  pass(0.4);
  EXPECT_EQ(dismissals, 2);
  EXPECT_TRUE(screen.window.subviews().empty());
  presenter().setOptions({});
  show({"b"}, bodyReply("B", "Text"));
  EXPECT_EQ(presenter().model()->title, "B");
}

TEST_F(PresenterTest, KeepsThePlaceOfAPictureAndFadesItIn) {
  const Dictionary data{{"imageSourceURL", "https://images.example/a.png"}, {"imageWidth", 1160}, {"imageHeight", 400}};
  show({"a", "b"}, bodyReply("A", "Text", data));
  const double height = presenter().contentHeight();
  const ImageView* shown = picture(*presenter().tableView());
  ASSERT_NE(shown, nullptr);
  EXPECT_EQ(shown->frame(), (Rect{0.0, 0.0, 580.0, 200.0}));
  EXPECT_EQ(shown->alpha(), 0.0);
  const std::string png(*encodePng(Image(8, 4, std::vector<std::uint32_t>(32, 0xFF00FF00U))));
  ASSERT_TRUE(answer("images.example", png));
  EXPECT_NE(shown->image(), nullptr);
  EXPECT_EQ(shown->presented().alpha, 0.0);
  pass(0.3);
  EXPECT_EQ(shown->presented().alpha, 1.0);
  EXPECT_EQ(presenter().contentHeight(), height) << "no jump";
  EXPECT_NE(screen.cache.imageForURLString("https://images.example/a.png"), nullptr);
}

TEST_F(PresenterTest, CachesAPictureThatComesTooLateAndDoesNotShowIt) {
  const Dictionary data{{"imageSourceURL", "https://images.example/a.png"}, {"imageWidth", 580}, {"imageHeight", 200}};
  show({"a", "b"}, bodyReply("A", "Text", data));
  screen.press(RemoteButton::Select);
  ASSERT_TRUE(answer(
      "getmessage/",
      bodyReply("B", "Text",
                {{"imageSourceURL", "https://other.example/b.png"}, {"imageWidth", 580}, {"imageHeight", 200}})));
  ASSERT_TRUE(answer("images.example", *encodePng(Image(1, 1, {0xFFFFFFFFU}))));
  EXPECT_EQ(picture(*presenter().tableView())->image(), nullptr);
  EXPECT_NE(screen.cache.imageForURLString("https://images.example/a.png"), nullptr);
  ASSERT_TRUE(answer("other.example", "no picture"));
  EXPECT_EQ(picture(*presenter().tableView())->alpha(), 0.0) << "its place stays quiet";
}

TEST_F(PresenterTest, GrowsForAPictureWhoseSizeNobodyTold) {
  show({"a"}, bodyReply("A", "Text", {{"optionalBase64Image", testing::pictureUrl(58, 20)}}));
  pass(0.7);
  const ImageView* shown = picture(*presenter().tableView());
  ASSERT_NE(shown, nullptr);
  EXPECT_EQ(shown->frame().height, 200.0);
  EXPECT_EQ(shown->alpha(), 1.0);
  EXPECT_EQ(presenter().tableView()->bounds().height, presenter().contentHeight());
  EXPECT_EQ(presenter().popupController()->popupView().bounds().height, presenter().contentHeight() + 80.0);
}

TEST_F(PresenterTest, LaysTheTitleOverThePictureOnlyWhenThereIsOne) {
  const Dictionary data{{"optionalBase64Image", testing::pictureUrl(4, 2)}, {"imageWidth", 4}, {"imageHeight", 2}};
  show({"a"}, bodyReply("A", "Text", data, "p_temp_1"));
  EXPECT_TRUE(presenter().textOverlapsImage());
  presenter().dismissViewController(false);
  show({"b"}, bodyReply("A", "Text", {}, "p_temp_1"));
  EXPECT_FALSE(presenter().textOverlapsImage());
}

TEST_F(PresenterTest, SurvivesHostileMessages) {
  Array malformed{Value(Array()), Value("text"), Value(7), Value(Array{Value(Array()), Value(1)}), Value(Null{})};
  Array many;
  for (int i = 0; i < 200; ++i) {
    many.push_back(Value(Array{Value(std::string(1000, 'w')), Value("x"), Value("nothing"), Value("#")}));
  }
  const Dictionary cases[] = {
      {{"buttons", malformed}, {"titleColor", "#zz"}, {"canvas_bgColor", "?"}, {"msgColor", "#"}},
      {{"buttons", many}, {"imageSourceURL", "file:///etc/passwd"}, {"imageWidth", 0}, {"imageHeight", 100}},
      {{"imageSourceURL", "x"}, {"imageWidth", 1}, {"imageHeight", std::int64_t{9'000'000'000'000'000'000}}},
      {{"imageSourceURL", "x"}, {"imageWidth", -580}, {"imageHeight", -100}, {"buttons", "none"}}};
  for (const Dictionary& data : cases) {
    for (const char* id : {"p_temp_1", "other"}) {
      show({testing::jsonText(data) + id}, bodyReply(std::string(20'000, 'T'), std::string(1'000'000, 'm'), data, id));
      ASSERT_TRUE(isUp());
      const Rect card = presenter().popupController()->popupView().frame();
      EXPECT_EQ(card.width, 580.0);
      EXPECT_GT(card.height, 0.0);
      EXPECT_LE(card.height, 1080.0);
      EXPECT_TRUE(std::isfinite(presenter().contentHeight()));
      screen.press(RemoteButton::Select);
      presenter().dismissViewController(false);
      platform.settle();
    }
  }
}

TEST_F(PresenterTest, HeedsTheHostsOptions) {
  KesuInAppOptions options;
  options.screenInsets = {50.0, 0.0, 40.0, 0.0};
  options.textScale = 2.0;
  options.shouldShowMessage = [](const Dictionary& header) { return *header.findText("mid") != "a"; };
  show({"x"}, bodyReply("Title", "Text"));
  const double plainHeight = presenter().contentHeight();
  presenter().dismissViewController(false);
  EXPECT_EQ(sensibleOptions({{-1.0, NAN, 1e9, 5.0}, NAN, {}, {}, {}, {}, {}, {}}).screenInsets,
            (EdgeInsets{0.0, 0.0, 400.0, 5.0}));
  EXPECT_EQ(sensibleOptions({{}, NAN, {}, {}, {}, {}, {}, {}}).textScale, 1.0);
  presenter().setOptions(options);
  show({"a", "b"}, bodyReply("Title", "Text"));
  EXPECT_EQ(presenter().responseValue().size(), 1U);
  EXPECT_GT(presenter().contentHeight(), plainHeight);
  EXPECT_LT(presenter().visibleHeight(), 1080.0 * 0.9 - 80.0 - 80.0);
  EXPECT_EQ(presenter().popupController()->popupView().frame().bottom(), 1040.0);
  presenter().dismissViewController(false);
  present();
  ASSERT_TRUE(answer("newUnFetched/", headersReply({"a"})));
  EXPECT_FALSE(isUp());
  EXPECT_FALSE(presenter().isInAppShown()) << "all refused: nothing is shown";
}

TEST_F(PresenterTest, CountsUnreadMessages) {
  presenter().fetchUnreadMessageCount();
  ASSERT_TRUE(answer("count/", R"({"count": 7})"));
  EXPECT_EQ(presenter().unreadMessageCount(), 7);
}

TEST_F(PresenterTest, TellsWhatAMessageHolds) {
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  show({"a"}, bodyReply("Title", "Text",
                        {{"imageSourceURL", "u"},
                         {"imageWidth", 4},
                         {"msgColor", "#1"},
                         {"buttons", buttonEntries({{"Watch", "tv://watch"}})}}));
  KesuPriorityLogger::sharedLogger().setLogLevel(0);
  std::string lines;
  for (const auto& line : platform.log.takeLines()) {
    lines += line.text + "\n";
  }
  for (const char* wanted :
       {"title = Title , message = Text, template-id = p_temp_2",
        "image source URL = u,imageWidth = 4,imageHeight = 0,msgColor = #1,titleColor = (null)",
        "Button title = Watch, deep-link URL = tv://watch, buttonBgColor = (null), buttonTextColor = tv://watch"}) {
    EXPECT_NE(lines.find(wanted), std::string::npos) << wanted << "\n" << lines;
  }
}

// --- Pressed buttons ---

TEST(CallToAction, DecidesByTheText) {
  using Kind = ButtonAction::Kind;
  const std::pair<std::string, ButtonAction> cases[] = {
      {"", {Kind::None, ""}},
      {"unique-id://abc", {Kind::Identifier, "abc"}},
      {"unique-id://a/unique-id://b", {Kind::Identifier, "a/b"}},
      {"x-unique-id", {Kind::Identifier, "x-unique-id"}},
      {"unique-id://a?wh=true", {Kind::Identifier, "a?wh=true"}},
      {"https://h/x?wh=true", {Kind::WebHook, "https://h/x"}},
      {"https://h/x?a=1&wh=true", {Kind::WebHook, "https://h/x?a=1"}},
      {"https://h/x?wh=true&later=12", {Kind::WebHook, "https://h/x?wh=true&"}},
      {"?wh=true", {Kind::WebHook, ""}},
      {"h?wh=true\xF0\x9F\x98\x80\xC3\xA4", {Kind::WebHook, "h?wh"}},
      {"https://h/x?wh=false", {Kind::Open, "https://h/x?wh=false"}},
      {" ", {Kind::Open, " "}}};
  for (const auto& [text, expected] : cases) {
    const ButtonAction action = decideAction(text);
    EXPECT_EQ(action.kind, expected.kind) << text;
    EXPECT_EQ(action.text, expected.text) << text;
  }
}

TEST_F(PresenterTest, OpensUrlsTellsTheHostAndPostsRecordAndEvent) {
  std::vector<KesuInAppStatus> notified;
  observeButtonClicks(platform.notifications, [&](const KesuInAppStatus& status) { notified.push_back(status); });
  show({"a"}, bodyReply("Title", "Text", kTwoButtons));
  screen.press(RemoteButton::Select);
  EXPECT_TRUE(platform.urlOpener.urls.empty()) << "only with the next turn";
  platform.settle();
  EXPECT_EQ(platform.urlOpener.urls, std::vector<std::string>{"tv://watch"});
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0], (KesuInAppStatus{0, "a", "c-a", "Watch", {}, 2, {}}));
  EXPECT_EQ(notified, told);
  ASSERT_EQ(callsToAction().size(), 1U);
  const Dictionary record = callsToAction().front();
  std::string keys;
  for (const auto& [key, value] : record) {
    keys += key + "=" + *value.text() + " ";
  }
  EXPECT_TRUE(keys.starts_with("mid=a cid=c-a kak=key kaid=kaid action=cta btnId=0 btnName=Watch ")) << keys;
  ASSERT_EQ(poster.posted.size(), 1U);
  const Dictionary& event = poster.posted[0].second;
  EXPECT_EQ(*event.findText("~e"), "Kesu.InAppCallToAction");
  EXPECT_EQ(*event.findText("cid"), "c-a");
  EXPECT_EQ(*event.findText("title"), "Watch");
  EXPECT_EQ(event.find("buttonID")->integerValue(), 0);
  EXPECT_EQ(event.find("deepLinkStatus")->integerValue(), 2);
  EXPECT_TRUE(isUp()) << "a press does not close";
}

TEST_F(PresenterTest, ReportsEveryOutcome) {
  struct Case {
    const char* action;
    bool systemOpens;
    std::int64_t status;
    std::optional<std::string> urlString;
  };
  const Case cases[] = {{"", true, 1, {}},
                        {"tv://x", true, 2, {}},
                        {"tv://x", false, 3, {}},
                        {"unique-id://abc", true, 4, "abc"},
                        {"https://hook.example/x?wh=true", true, 5, {}}};
  for (const Case& one : cases) {
    platform.urlOpener.answer = one.systemOpens;
    platform.urlOpener.urls.clear();
    told.clear();
    show({std::string("m") + one.action + (one.systemOpens ? "" : "!")},
         bodyReply("Title", "Text", {{"buttons", buttonEntries({{"B", one.action}})}}));
    screen.press(RemoteButton::Select);
    platform.settle();
    ASSERT_EQ(told.size(), 1U) << one.action;
    EXPECT_EQ(told[0].status, one.status);
    EXPECT_EQ(told[0].urlString, one.urlString);
    EXPECT_EQ(platform.urlOpener.urls.size(), one.status == 2 || one.status == 3 ? 1U : 0U);
    presenter().dismissViewController(false);
  }
  EXPECT_EQ(callsToAction().size(), 5U);
}

TEST_F(PresenterTest, CallsWebHooksAndReportsFailuresToTheBlockOnly) {
  platform.bundle.dictionary = {{"CFBundleShortVersionString", "1.0"},
                                {"CFBundleDisplayName", "Example"},
                                {"CFBundleVersion", "42"},
                                {"CFBundleIdentifier", "tv.example.app"}};
  platform.defaults.set("kesuIdentity", Dictionary{{"appSpecificUserId", "user"}});
  show({"a"}, bodyReply("Title", "Text", {{"buttons", buttonEntries({{"B", "https://hook.example/x?wh=true"}})}}));
  screen.press(RemoteButton::Select);
  platform.settle();
  HttpRequest hook;
  for (const HttpRequest& request : platform.http.requests()) {
    hook = request.url == "https://hook.example/x" ? request : hook;
  }
  EXPECT_EQ(hook.method, "POST");
  EXPECT_EQ(hook.headers,
            (std::vector<std::pair<std::string, std::string>>{{"Content-Type", "application/json"},
                                                              {"Content-Length", std::to_string(hook.body.size())}}));
  const Dictionary body = *parseJson(hook.body)->dictionary();
  for (const auto& [key, value] : std::vector<std::pair<std::string, std::string>>{{"v", "10-i-3.2.3"},
                                                                                   {"appVersion", "1.0"},
                                                                                   {"appName", "Example"},
                                                                                   {"bundleVersion", "42"},
                                                                                   {"bundle", "tv.example.app"},
                                                                                   {"model", "x86_64"},
                                                                                   {"~uid", "user"},
                                                                                   {"timestamp", "1489579320000"}}) {
    ASSERT_NE(body.findText(key), nullptr) << key;
    EXPECT_EQ(*body.findText(key), value);
  }
  EXPECT_EQ(body.findText("uniqueId")->size(), 22U);
  EXPECT_TRUE(body.contains("osName") && body.contains("osVersion") && body.contains("deviceLocalTime"));
  EXPECT_EQ(told.size(), 1U);
  const auto requests = platform.http.requests();
  for (std::size_t i = 0; i < requests.size(); ++i) {
    if (requests[i].url == hook.url) {
      platform.http.fail(i, HttpError::TimedOut);
    }
  }
  platform.settle();
  ASSERT_EQ(told.size(), 2U);
  ASSERT_TRUE(told[1].error.has_value());
  EXPECT_EQ(told[1].error->code, HttpError::TimedOut);
  told[1].error.reset();
  EXPECT_EQ(told[1], told[0]) << "filled as before";
}

struct HostController : ViewController, KesuInAppMessageDelegate {
  void inAppMessageButtonHandlerWithIndex(std::int64_t index, const std::string& buttonTitle,
                                          const std::string& containingURLString,
                                          std::int64_t withDeepLinkStatus) override {
    line += std::to_string(index) + buttonTitle + containingURLString + std::to_string(withDeepLinkStatus);
  }
  std::string line;
};

TEST_F(PresenterTest, TellsTheDelegateWithoutABlockAndNoneThatHasGone) {
  const Dictionary data{{"buttons", buttonEntries({{"B", "unique-id://x"}})}};
  auto host = std::make_unique<HostController>();
  presenter().setCallbacks({}, host.get());
  show({"a"}, bodyReply("Title", "Text", data));
  screen.press(RemoteButton::Select);
  platform.settle();
  EXPECT_EQ(host->line, "0Bunique-id://x4");
  presenter().setCallbacks([this](const KesuInAppStatus& status) { told.push_back(status); }, host.get());
  screen.press(RemoteButton::Select);
  platform.settle();
  EXPECT_EQ(told.size(), 1U);
  EXPECT_EQ(host->line, "0Bunique-id://x4") << "only the block";
  presenter().setCallbacks({}, host.get());
  screen.press(RemoteButton::Select);
  host.reset();
  platform.settle();
  EXPECT_EQ(presenter().delegate(), nullptr);
  EXPECT_EQ(callsToAction().size(), 3U) << "the record is posted all the same";
}

TEST_F(PresenterTest, LetsTheHostVetoAUrl) {
  KesuInAppOptions options;
  options.shouldOpenUrl = [](const std::string& url) { return url != "tv://watch"; };
  presenter().setOptions(options);
  show({"a"}, bodyReply("Title", "Text", kTwoButtons));
  screen.press(RemoteButton::Select);
  platform.settle();
  EXPECT_TRUE(platform.urlOpener.urls.empty());
  EXPECT_EQ(told.at(0).status, 3);
}

TEST_F(PresenterTest, AttributesAPressToTheMessageThatWasPressed) {
  show({"a", "b"}, bodyReply("A", "Text", kTwoButtons));
  screen.press(RemoteButton::Select);
  presenter().dismissViewController(true);
  platform.settle();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0], (KesuInAppStatus{0, "a", "c-a", "Watch", {}, 2, {}}));
}

}  // namespace
}  // namespace kesu
