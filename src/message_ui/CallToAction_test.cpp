#include "message_ui/CallToAction.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "messaging/ButtonClicks.h"
#include "platform/OrderlyEnd.h"
#include "testing/PresenterTest.h"

namespace kesu {
namespace {

using testing::bodyReply;
using testing::buttonEntries;
using testing::kTwoButtons;

class CallToActionTest : public testing::PresenterTest {
 protected:
  /// Bodies of records for the collector's table of notifications, receipts left out.
  std::vector<Dictionary> callsToAction() {
    platform.settle();
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
};

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

TEST_F(CallToActionTest, OpensUrlsTellsTheHostAndPostsRecordAndEvent) {
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

TEST_F(CallToActionTest, ReportsEveryOutcome) {
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
    const auto lines = platform.log.takeLines();
    EXPECT_EQ(lines.size(), one.status == 3 ? 1U : 0U) << "told without any log threshold";
    EXPECT_EQ(platform.urlOpener.urls.size(), one.status == 2 || one.status == 3 ? 1U : 0U);
    presenter().dismissViewController(false);
  }
  EXPECT_EQ(callsToAction().size(), 5U);
}

TEST_F(CallToActionTest, CallsWebHooksAndReportsFailuresToTheBlockOnly) {
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

TEST_F(CallToActionTest, CallsTheDelegateWithoutABlockAndNoDestroyedOne) {
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

TEST_F(CallToActionTest, LetsTheHostVetoUrlsOnly) {
  KesuInAppOptions options;
  options.shouldOpenUrl = [](const std::string&) { return false; };
  presenter().setOptions(options);
  const std::pair<const char*, std::int64_t> cases[] = {
      {"tv://x", 3}, {"unique-id://x", 4}, {"https://h/x?wh=true", 5}};
  for (const auto& [action, status] : cases) {
    show({action}, bodyReply("Title", "Text", {{"buttons", buttonEntries({{"B", action}})}}));
    screen.press(RemoteButton::Select);
    platform.settle();
    EXPECT_EQ(told.back().status, status);
    presenter().dismissViewController(false);
  }
  EXPECT_TRUE(platform.urlOpener.urls.empty());
  EXPECT_EQ(callsToAction().size(), std::size(cases));
  EXPECT_EQ(std::ranges::count(platform.http.requests(), "https://h/x", &HttpRequest::url), 1);
}

TEST_F(CallToActionTest, RecordsAPressWhateverTheHostThrows) {
  const auto fail = [](const auto&) -> bool { throw std::runtime_error("from the host"); };
  for (const bool isVeto : {false, true}) {
    KesuInAppOptions options;
    if (isVeto) {
      options.shouldOpenUrl = fail;
    }
    presenter().setOptions(options);
    presenter().setCallbacks(fail, nullptr);
    show({isVeto ? "b" : "a"}, bodyReply("Title", "Text", kTwoButtons));
    screen.press(RemoteButton::Select);
    EXPECT_THROW(platform.settle(), std::runtime_error);
    platform.settle();
    const std::size_t presses = isVeto ? 2 : 1;
    EXPECT_EQ(callsToAction().size(), presses);
    ASSERT_EQ(poster.posted.size(), presses);
    EXPECT_EQ(poster.posted.back().second.find("deepLinkStatus")->integerValue(), isVeto ? 3 : 2);
    presenter().dismissViewController(false);
  }
}

TEST_F(CallToActionTest, InformsOnlyTheCollectorInAnExitHandler) {
  observeButtonClicks(platform.notifications,
                      [](const KesuInAppStatus&) { ADD_FAILURE() << "an observer of the host"; });
  KesuInAppOptions options;
  options.shouldOpenUrl = [](const std::string&) {
    ADD_FAILURE() << "what the host's functions use may be destroyed when an exit handler runs";
    return true;
  };
  presenter().setOptions(options);
  show({"a"},
       bodyReply("Title", "Text", {{"buttons", buttonEntries({{"A", "tv://x"}, {"B", "https://h/x?wh=true"}})}}));
  screen.press(RemoteButton::Select);
  screen.press(RemoteButton::Right);
  screen.press(RemoteButton::Select);
  endAtExit(platform.platform);
  EXPECT_TRUE(platform.urlOpener.urls.empty());
  EXPECT_TRUE(told.empty()) << "by the failed web hook neither";
  EXPECT_EQ(poster.posted.size(), 2U);
  std::string recorded;  // The clock stands still: records of both buttons share a file.
  for (const Dictionary& record : screen.store.dictionariesToRepost()) {
    const std::string* name = record.findText("btnName");
    recorded += name != nullptr ? *name : "";
  }
  EXPECT_EQ(recorded, "B");
}

TEST_F(CallToActionTest, AttributesAPressToTheMessageThatWasPressed) {
  show({"a", "b"}, bodyReply("A", "Text", kTwoButtons));
  screen.press(RemoteButton::Select);
  presenter().dismissViewController(true);
  platform.settle();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0], (KesuInAppStatus{0, "a", "c-a", "Watch", {}, 2, {}}));
}

}  // namespace
}  // namespace kesu
