#include "message_ui/KesuInAppPresenter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "drawing/TextLayout.h"
#include "testing/FontRelease.h"
#include "testing/PresenterTest.h"
#include "uikit/ViewDrawing.h"
#include "uikit/WindowInput.h"

namespace kesu {
namespace {

using testing::bodyReply;
using testing::buttonEntries;
using testing::headersReply;
using testing::kTwoButtons;
using testing::PresenterTest;

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
  EXPECT_EQ(texts(presenter().popupController()->popupView()), "Title|Text|Showing 1 of 2 in-app messages|");
  EXPECT_EQ(focusedTitle(), "Watch");
  const AccessibilityInfo& read = presenter().popupController()->popupView().accessibility();
  EXPECT_EQ(read.role, AccessibilityInfo::Role::Dialog);
  EXPECT_EQ(read.label, "Title");
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

TEST_F(PresenterTest, PagesWithTheArrow) {
  show({"a", "b", "c"}, bodyReply("A", "Text", kTwoButtons));
  const View* next = presenter().bars()->focusAfter(kNextTag);
  screen.press(RemoteButton::Down);
  EXPECT_EQ(focusedTitle(), "\u276F") << "down to the only arrow, though it lies aside";
  screen.press(RemoteButton::Select);
  EXPECT_TRUE(told.empty()) << "not before the message has arrived";
  ASSERT_TRUE(answer("getmessage/", bodyReply("B", "Text", {{"canvas_bgColor", "#102030"}})));
  pass(0.7);
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0], (KesuInAppStatus{11, "b", "c-b", {}, {}, 3, {}}));
  EXPECT_EQ(texts(presenter().popupController()->popupView()), "B|Text|Showing 2 of 3 in-app messages|");
  EXPECT_EQ(presenter().tableView()->backgroundColor(), (Color{16 / 255.0, 32 / 255.0, 48 / 255.0, 1.0}));
  EXPECT_EQ(screen.window.focusedView(), next) << "the same arrow, which stayed";
  EXPECT_EQ(presenter().popupController()->popupView().bounds().height, presenter().tableView()->bounds().height + 80.0)
      << "no buttons";
}

TEST_F(PresenterTest, PagesWithSwipesUpToTheEnds) {
  show({"a", "b"}, bodyReply("A", "Text"));
  WindowInput::of(screen.window).swipe(SwipeDirection::Left);
  ASSERT_TRUE(answer("getmessage/", bodyReply("B", "Text")));
  EXPECT_EQ(focusedTitle(), "\u276E") << "at the end the other arrow";
  WindowInput::of(screen.window).swipe(SwipeDirection::Left);
  EXPECT_EQ(told.size(), 1U) << "nothing at the end";
  WindowInput::of(screen.window).swipe(SwipeDirection::Right);
  platform.settle();
  ASSERT_EQ(told.size(), 2U) << "from the cache";
  EXPECT_EQ(told[1], (KesuInAppStatus{10, "a", "c-a", {}, {}, 3, {}}));
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
}

TEST_F(PresenterTest, ReportsEveryStepOfQuickPaging) {
  show({"a", "b", "c", "d"}, bodyReply("A", ""));
  const auto pressThreeTimes = [this](const char* reply) {
    for (int press = 0; press < 3; ++press) {
      WindowInput::of(screen.window).swipe(SwipeDirection::Left);
    }
    for (int body = 0; body < 3; ++body) {
      ASSERT_TRUE(answer("getmessage/", bodyReply(reply, ""))) << "and a receipt was sent for each";
    }
  };
  pressThreeTimes("D");
  ASSERT_EQ(told.size(), 3U);
  for (std::size_t step = 0; step < 3; ++step) {
    const std::string message(1, static_cast<char>('b' + step));
    EXPECT_EQ(told[step], (KesuInAppStatus{11, message, "c-" + message, {}, {}, 3, {}}));
  }
  presenter().dismissViewController(false);
  presenter().setCallbacks(
      [this](const KesuInAppStatus& status) {
        told.push_back(status);
        presenter().dismissViewController(false);
      },
      nullptr);
  show({"k", "l", "m", "n"}, bodyReply("K", ""));
  pressThreeTimes("N");
  EXPECT_EQ(told.size(), 4U) << "closed by the host in the first";
}

TEST_F(PresenterTest, CountsNoMessageThatIsEmpty) {
  for (const std::size_t count : {1U, 3U}) {
    std::vector<std::string> identifiers;
    for (std::size_t i = 0; i < count; ++i) {
      identifiers.push_back("m" + std::to_string(count) + std::to_string(i));
    }
    show(identifiers, bodyReply("", ""));
    const View& card = presenter().popupController()->popupView();
    EXPECT_EQ(texts(card), "No messages to show.|");
    EXPECT_EQ(presenter().bars()->focusAfter(kNextTag) == nullptr, count == 1);
    EXPECT_EQ(card.bounds().height, presenter().tableView()->bounds().height + (count == 1 ? 0.0 : 80.0));
    presenter().dismissViewController(false);
  }
}

std::optional<Color> colorOf(const std::string& text, const View& view) {
  const auto* label = dynamic_cast<const Label*>(&view);
  const auto* button = dynamic_cast<const Button*>(&view);
  if (label != nullptr && label->text() == text) {
    return label->textColor();
  }
  if (button != nullptr && button->title() == text) {
    return button->titleColor();
  }
  for (const ViewPtr& inside : view.subviews()) {
    if (const auto found = colorOf(text, *inside)) {
      return found;
    }
  }
  return std::nullopt;
}

TEST_F(PresenterTest, KeepsTheColoursThatAMessageHasChosen) {
  const auto shown = [this](const Dictionary& data, const std::string& text) {
    show({testing::jsonText(data)}, bodyReply("Title", "Text", data));
    const auto color = colorOf(text, presenter().popupController()->popupView());
    presenter().dismissViewController(false);
    return color.value_or(Color::redColor());
  };
  const Color nearlyWhite{254.0 / 255.0, 254.0 / 255.0, 254.0 / 255.0, 1.0};
  const auto button = [](const char* face, const char* title) {
    return Array{Value(Array{Value("B"), Value(""), Value(face), Value(title)})};
  };
  EXPECT_EQ(shown({{"titleColor", "#FEFEFE"}, {"canvas_bgColor", "#FFFFFF"}}, "Title"), nearlyWhite);
  EXPECT_EQ(shown({{"msgColor", "#FEFEFE"}, {"canvas_bgColor", "#FFFFFF"}}, "Text"), nearlyWhite);
  EXPECT_FALSE(isLight(shown({{"imageWidth", 1}}, "Title"))) << "a default is mended";
  EXPECT_FALSE(isLight(shown({{"msgColor", "#zz"}}, "Text"))) << "and what names no colour";
  EXPECT_TRUE(isLight(shown({{"canvas_bgColor", "#000000"}}, "Text")));
  EXPECT_EQ(shown({{"buttons", button("#zz", "#FEFEFE")}}, "B"), nearlyWhite) << "also without a face";
  EXPECT_FALSE(isLight(shown({{"buttons", button("#FFFFFF", "FEFEFE")}}, "B")));
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
  show({"a"}, bodyReply("A", "Text"));
  EXPECT_EQ(focusedTitle(), "<none>");
  screen.press(RemoteButton::Menu);
  EXPECT_FALSE(presenter().isInAppShown());
  EXPECT_EQ(presenter().popupController(), nullptr);
  EXPECT_EQ(presenter().model(), nullptr);
  EXPECT_EQ(presenter().showIndex(), 0);
  pass(0.4);
  EXPECT_TRUE(screen.window.subviews().empty());
  show({"b"}, bodyReply("B", "Text"));
  EXPECT_EQ(presenter().model()->title, "B");
}

TEST_F(PresenterTest, SlidesOutWithAllThatItShowed) {
  for (const bool byUser : {true, false}) {
    show({byUser ? "a" : "b", "c"}, bodyReply("A", "Text", kTwoButtons));
    const std::string shown = texts(screen.window);
    if (byUser) {
      screen.press(RemoteButton::Menu);
    } else {
      presenter().dismissViewController(true);
    }
    pass(0.1);
    EXPECT_EQ(texts(screen.window), shown) << "nothing vanishes before the card has left";
    pass(0.4);
    EXPECT_TRUE(screen.window.subviews().empty());
  }
}

TEST_F(PresenterTest, ForgetsTheHostsFunctionsAtOnceAndItsLooksWithTheNextShow) {
  KesuInAppOptions options;
  options.textScale = 2.0;
  options.screenInsets.bottom = 40.0;
  options.didDismiss = [] { FAIL() << "its host may have gone"; };
  presenter().setOptions(options);
  show({"a", "b"}, bodyReply("A", "Text"));
  const double height = presenter().contentHeight();
  EXPECT_LT(presenter().visibleHeight(), 1080.0 * 0.9 - 80.0 - 20.0) << "the inset counts";
  presenter().setOptions({});
  screen.press(RemoteButton::Select);
  ASSERT_TRUE(answer("getmessage/", bodyReply("B", "Text")));
  pass(0.7);
  EXPECT_EQ(presenter().contentHeight(), height) << "as large as the message before";
  EXPECT_EQ(presenter().popupController()->popupView().frame().bottom(), 1040.0);
  presenter().dismissViewController(true);
  pass(0.4);
  show({"c"}, bodyReply("A", "Text"));
  EXPECT_LT(presenter().contentHeight(), height);
}

TEST_F(PresenterTest, CallsTheHostBeforeAndAfterADismissalAlsoWithoutAnimation) {
  std::string order;
  KesuInAppOptions options;
  options.willDismiss = [&] { order += screen.window.subviews().empty() ? "late " : "will "; };
  options.didDismiss = [&] { order += screen.window.subviews().empty() ? "did " : "early "; };
  presenter().setOptions(options);
  for (const bool animated : {false, true}) {
    show({animated ? "a" : "b"}, bodyReply("A", "Text"));
    presenter().dismissViewController(animated);
    pass(0.4);
  }
  EXPECT_EQ(order, "will did will did ");
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
  EXPECT_EQ(ViewDrawing::presented(*shown).alpha, 0.0);
  pass(0.3);
  EXPECT_EQ(ViewDrawing::presented(*shown).alpha, 1.0);
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

TEST_F(PresenterTest, GrowsForAPictureOfUndeclaredSize) {
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
  const double withPicture = presenter().contentHeight();
  presenter().dismissViewController(false);
  EXPECT_FALSE(presenter().textOverlapsImage());
  show({"b"}, bodyReply("A", "Text", {}, "p_temp_1"));
  EXPECT_TRUE(presenter().textOverlapsImage()) << "what the template says";
  const double titleHeight = heightForText("A", titleFont(), kCardTextWidth);
  EXPECT_EQ(presenter().contentHeight(), withPicture - 290.0 - 24.0 + titleHeight + 8.0 + 8.0) << "room of its own";
}

/// A popup of which every view that can be focused is known.
class PresenterFocusTest : public PresenterTest {
 protected:
  static void collect(View& view, std::vector<View*>& found) {
    if (view.canBecomeFocused()) {
      found.push_back(&view);
    }
    for (const ViewPtr& inside : view.subviews()) {
      collect(*inside, found);
    }
  }

  /// Where an arrow leads; a text is scrolled to its end on the way.
  View* moved(View* from, RemoteButton arrow) {
    constexpr int kMostPresses = 60;
    screen.window.setFocusedView(from);
    for (int press = 0; press < kMostPresses && screen.window.focusedView() == from; ++press) {
      screen.press(arrow);
    }
    return screen.window.focusedView();
  }

  std::size_t countReached(View* start) {
    std::vector<View*> reached{start};
    for (std::size_t next = 0; next < reached.size(); ++next) {
      for (const RemoteButton arrow : {RemoteButton::Up, RemoteButton::Down, RemoteButton::Left, RemoteButton::Right}) {
        View* to = moved(reached[next], arrow);
        if (std::find(reached.begin(), reached.end(), to) == reached.end()) {
          reached.push_back(to);
        }
      }
    }
    return reached.size();
  }
};

TEST_F(PresenterFocusTest, ReachesEverythingFromEverything) {
  const std::vector<std::pair<std::string, std::string>> titles(5, {"Button", ""});
  const std::string longText(3000, 'm');
  for (const std::ptrdiff_t count : {0, 1, 2, 5}) {
    const Array entries = buttonEntries({titles.begin(), titles.begin() + count});
    const std::string body = bodyReply(count == 5 ? longText : "Title", count == 0 || count == 2 ? longText : "Text",
                                       {{"buttons", entries}});
    const std::string name = std::to_string(count);
    show({name + "a", name + "b", name + "c"}, body);
    for (const int arrows : {1, 2, 1}) {
      std::vector<View*> all;
      collect(presenter().popupController()->popupView(), all);
      EXPECT_EQ(all.size(), static_cast<std::size_t>(arrows + count + (count == 1 ? 0 : 1)));
      for (View* start : all) {
        EXPECT_EQ(countReached(start), all.size()) << count << " buttons, " << arrows << " arrows";
      }
      WindowInput::of(screen.window).swipe(SwipeDirection::Left);
      answer("getmessage/", body);
    }
    presenter().dismissViewController(false);
  }
}

TEST_F(PresenterTest, LeavesOutTheMessagesThatTheHostRefuses) {
  KesuInAppOptions options;
  options.shouldShowMessage = [](const Dictionary& header) { return *header.findText("mid") != "a"; };
  presenter().setOptions(options);
  show({"a", "b"}, bodyReply("Title", "Text"));
  EXPECT_EQ(presenter().responseValue().size(), 1U);
  presenter().dismissViewController(false);
  present();
  ASSERT_TRUE(answer("newUnFetched/", headersReply({"a"})));
  EXPECT_FALSE(isUp());
  EXPECT_FALSE(presenter().isInAppShown()) << "all refused: nothing is shown";
}

TEST_F(PresenterTest, ClosesAShowWhoseHostThrows) {
  const auto fail = [](const auto&...) -> bool { throw std::runtime_error("from the host"); };
  KesuInAppOptions filters, presents, dismisses;
  filters.shouldShowMessage = fail;
  presents.willPresent = fail;
  dismisses.willDismiss = fail;
  presenter().setOptions(filters);
  present();
  EXPECT_THROW(answer("newUnFetched/", headersReply({"a"})), std::runtime_error);
  EXPECT_FALSE(presenter().isInAppShown());
  presenter().setOptions(presents);
  present();
  ASSERT_TRUE(answer("newUnFetched/", headersReply({"a"})));
  EXPECT_THROW(answer("getmessage/", bodyReply("Title", "Text", kTwoButtons)), std::runtime_error);
  EXPECT_FALSE(presenter().isInAppShown() || isUp());
  presenter().setOptions(dismisses);
  show({"b"}, bodyReply("Title", "Text", kTwoButtons));
  ASSERT_TRUE(isUp());
  EXPECT_THROW(presenter().dismissViewController(false), std::runtime_error);
  EXPECT_TRUE(screen.window.subviews().empty());
}

}  // namespace
}  // namespace kesu
