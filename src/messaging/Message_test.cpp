// What a message says, without any service.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "foundation/Json.h"
#include "foundation/Keepable.h"
#include "graphics/PngEncoder.h"
#include "messaging/ButtonClicks.h"
#include "messaging/HexColor.h"
#include "messaging/InAppModel.h"
#include "messaging/KeptSize.h"
#include "testing/FakeHttpClient.h"
#include "testing/ManualBackgroundQueue.h"
#include "testing/MutatedReplies.h"

namespace kesu {
namespace {

Color rgb(int red, int green, int blue) {
  return {red / 255.0, green / 255.0, blue / 255.0, 1.0};
}

const Color kBlue = rgb(9, 182, 238);

TEST(HexColor, ReadsWhatLooksLikeAColour) {
  const std::pair<const char*, std::optional<Color>> rows[] = {{"#1E90FF", rgb(0x1E, 0x90, 0xFF)},
                                                               {"1e90ff", rgb(0x1E, 0x90, 0xFF)},
                                                               {"0x1E90FF", rgb(0x1E, 0x90, 0xFF)},
                                                               {"0X1#E9#0FF", rgb(0x1E, 0x90, 0xFF)},
                                                               {"$+~0x09b6ee", kBlue},
                                                               {"\xC2\xA3\xC3\x97"
                                                                "09b6ee",
                                                                kBlue},
                                                               {"FF09B6EE", kBlue},
                                                               {"123456789", Color::white()},
                                                               {"12 zz", rgb(0, 0, 0x12)},
                                                               {"0", rgb(0, 0, 0)},
                                                               {"", std::nullopt},
                                                               {"#", std::nullopt},
                                                               {"0x", std::nullopt},
                                                               {"-1", std::nullopt},
                                                               {" 12", std::nullopt},
                                                               {"red", std::nullopt}};
  for (const auto& [text, color] : rows) {
    EXPECT_EQ(colorFromHexadecimalString(text), color) << text;
  }
}

TEST(HexColor, CallsValidWhatHoldsAnotherCharacter) {
  for (const char* text : {"#1E90FF", "0x1e90ff", "1e90ff", "red", "0x1E90FF"}) {
    EXPECT_TRUE(isValidHexadecimalString(text)) << text;
  }
  for (const char* text : {"1E90FF", "0", ""}) {
    EXPECT_FALSE(isValidHexadecimalString(text)) << text;
  }
}

InAppModel message(const char* templateId, const std::string& templateData, bool loadDefaults = false) {
  return InAppModel({{"msg", "Text"}, {"title", "Title"}, {"templateId", templateId}, {"templateData", templateData}},
                    loadDefaults);
}

constexpr const char* kTemplate =
    R"({"imageSourceURL":"https://h/i.png","imageWidth":"640","imageHeight":360.9,"optionalBase64Image":"data:,x",
        "titleColor":"#102030","msgColor":"","canvas_bgColor":"red","templateID":"no",
        "buttons":[["A","a://","#010203","x","#040506"],["B","b://","#070809"],["C","c://"],[],"no",
                   ["D","d://","010203","040506"],["E","e://","#zz","#zz"],[1,2,3]]})";

TEST(InAppModel, ReadsTextsAndTemplate) {
  const InAppModel model = message("p_temp_1", kTemplate);
  EXPECT_EQ(model.msg + "|" + model.title + "|" + model.templateID, "Text|Title|p_temp_1");
  ASSERT_TRUE(model.templateData.has_value());
  const InAppTemplateData& data = *model.templateData;
  EXPECT_EQ(data.imageURL(), "https://h/i.png");
  EXPECT_EQ(data.imageSize(), (Size{640, 360}));
  EXPECT_EQ(data.optionalBase64Image(), "data:,x");
  EXPECT_EQ(data.titleColor(), rgb(0x10, 0x20, 0x30));
  EXPECT_EQ(data.messageColor(), Color::white());
  EXPECT_EQ(data.canvasColor(), std::nullopt) << "no colour, and no fallback";
  EXPECT_EQ(data.templateID(), "");
  EXPECT_EQ(data.buttonCount(), 8U);
}

TEST(InAppModel, TellsWhetherTheTextOverlapsTheImage) {
  for (const auto& [id, overlaps] : {std::pair("p_temp_1", true), {"p_temp_2", false}, {"", false}}) {
    EXPECT_EQ(message(id, kTemplate).templateData->textOverlapsImage(), overlaps) << id;
  }
}

TEST(InAppModel, LeavesUnsetWhatIsNotThere) {
  EXPECT_EQ(InAppModel({}, false).title, "");
  EXPECT_FALSE(InAppModel({{"msg", 4}, {"title", Null{}}}, false).templateData.has_value());
  for (const char* damaged : {"", "{", "[1]", "{}", "null", R"({"buttons":{"a":1},"imageWidth":[]})"}) {
    const InAppModel model = message("p_temp_1", damaged, true);
    ASSERT_TRUE(model.templateData.has_value()) << damaged;
    EXPECT_EQ(model.templateData->imageURL(), "");
    EXPECT_EQ(model.templateData->imageSize(), Size{});
    EXPECT_EQ(model.templateData->buttonCount(), 0U);
    EXPECT_EQ(model.templateData->titleColor(), Color::white());
  }
  EXPECT_FALSE(message("", "{}", true).templateData->shouldLoadFromDefaults());
}

struct ButtonRow {
  std::size_t index;
  std::optional<std::string> title;
  std::string action;
  std::optional<Color> titleColor;
  std::optional<Color> background;
};

void expectButton(const InAppTemplateData& data, const ButtonRow& row) {
  SCOPED_TRACE(row.index);
  EXPECT_EQ(data.buttonTitleAtIndex(row.index), row.title);
  EXPECT_EQ(data.buttonActionAtIndex(row.index), row.action);
  EXPECT_EQ(data.buttonTitleColorAtIndex(row.index), row.titleColor);
  EXPECT_EQ(data.buttonBackgroundAtIndex(row.index), row.background);
}

TEST(InAppTemplateData, AnswersForItsButtons) {
  const Color white = Color::white();
  const auto model = message("", kTemplate);
  const ButtonRow rows[] = {{0, "A", "a://", rgb(4, 5, 6), rgb(1, 2, 3)},
                            {1, "B", "b://", rgb(7, 8, 9), rgb(7, 8, 9)},
                            {2, "C", "c://", white, kBlue},
                            {3, std::nullopt, "", white, kBlue},
                            {4, std::nullopt, "", white, kBlue},
                            {5, "D", "d://", white, kBlue},
                            {6, "E", "e://", std::nullopt, std::nullopt},
                            {7, std::nullopt, "", white, kBlue},
                            {8, std::nullopt, "", white, std::nullopt},
                            {9, std::nullopt, "", white, std::nullopt}};
  for (const ButtonRow& row : rows) {
    expectButton(*model.templateData, row);
  }
}

TEST(InAppTemplateData, AnswersDefaultColoursWhenTold) {
  const auto model = message("", kTemplate, true);
  EXPECT_EQ(model.templateData->titleColor(), Color::white());
  EXPECT_EQ(model.templateData->messageColor(), Color::white());
  EXPECT_EQ(model.templateData->canvasColor(), Color::white());
  expectButton(*model.templateData, {0, "A", "a://", Color::white(), kBlue});
}

class MessageImageTest : public ::testing::Test {
 protected:
  static InAppTemplateData from(const std::string& url) { return InAppTemplateData({{"imageSourceURL", url}}, false); }

  /// Downloads and returns what the handler was told; fails unless it was called once, on the worker.
  ImagePtr download(const InAppTemplateData& data, int status = 200) {
    int calls = 0;
    ImagePtr result;
    data.downloadImageWithCompletionHandler(loader, [&](ImagePtr image) {
      ++calls;
      result = std::move(image);
    });
    http.answerAll(status, png);
    EXPECT_EQ(calls, 0) << "never on the main thread";
    worker.runAll();
    EXPECT_EQ(calls, 1);
    return result;
  }

  const std::string png = *encodePng(Image(2, 1, {0xFF112233, 0xFF445566}));
  testing::FakeHttpClient http;
  testing::ManualBackgroundQueue worker;
  MessageImageLoader loader{http, worker};
};

TEST_F(MessageImageTest, DownloadsOnceAndKeepsIt) {
  const InAppTemplateData data = from("https://h/i.png");
  const ImagePtr image = download(data);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->pixels()[1], 0xFF445566U);
  EXPECT_EQ(http.request(0).replyLimit, MessageImageLoader::kLimitBytes);
  EXPECT_EQ(data.downloadedImage(), image);
  ImagePtr again;
  data.downloadImageWithCompletionHandler(loader, [&](ImagePtr kept) { again = std::move(kept); });
  EXPECT_EQ(again, image) << "at once";
  EXPECT_EQ(http.requestCount(), 1U);
}

TEST_F(MessageImageTest, HandsOverNothingWhenThereIsNoPicture) {
  for (const int status : {404, 500, 301}) {
    EXPECT_EQ(download(from("https://h/i.png"), status), nullptr) << status;
  }
  for (const char* url : {"data:image/png;base64,AAAA", "data:", "data:;base64,%%%"}) {
    EXPECT_EQ(download(from(url)), nullptr) << url;
  }
  ImagePtr broken = std::make_shared<Image>(1, 1, std::vector<std::uint32_t>{0});
  from("https://h/i.png").downloadImageWithCompletionHandler(loader, [&](ImagePtr image) {
    broken = std::move(image);
  });
  HttpReply brokenReply = testing::FakeHttpClient::failure(HttpError::ConnectionLost, 200);
  brokenReply.body = png;
  http.answer(3, std::move(brokenReply));
  worker.runAll();
  EXPECT_EQ(broken, nullptr) << "an error beside a picture";
  EXPECT_EQ(http.requestCount(), 4U) << "data: URLs make no request";
}

TEST_F(MessageImageTest, ReadsPicturesWithinTheMessage) {
  const std::string url = "data:image/gif;base64,R0lGODlhAQABAIAAAP8AAP///yH5BAAAAAAALAAAAAABAAEAAAICRAEAOw==";
  const ImagePtr image = download(from(url));
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->pixels()[0], 0xFFFF0000U);
  EXPECT_NE(InAppTemplateData({{"optionalBase64Image", url}}, false).base64Image(), nullptr);
  for (const char* other : {"", "https://h/i.png", "file:///etc/hostname"}) {
    EXPECT_EQ(InAppTemplateData({{"optionalBase64Image", other}}, false).base64Image(), nullptr);
  }
  EXPECT_EQ(http.requestCount(), 0U);
}

TEST_F(MessageImageTest, OutlivesItsMessage) {
  int calls = 0;
  {
    const InAppTemplateData data = from("https://h/i.png");
    data.downloadImageWithCompletionHandler(loader, [&](const ImagePtr& image) { calls += image != nullptr ? 1 : 0; });
  }
  http.answerAll(200, png);
  worker.runAll();
  EXPECT_EQ(calls, 1);
}

TEST(InAppTemplateData, SurvivesMutatedTemplates) {
  testing::forEachMutation(kTemplate, [](const std::string& mutated) {
    const InAppModel model = message("", mutated);
    for (std::size_t i = 0; i <= model.templateData->buttonCount(); ++i) {
      static_cast<void>(model.templateData->buttonTitleAtIndex(i));
      static_cast<void>(model.templateData->buttonActionAtIndex(i));
      static_cast<void>(model.templateData->buttonTitleColorAtIndex(i));
      ASSERT_TRUE(i == model.templateData->buttonCount() || model.templateData->buttonBackgroundAtIndex(i) ||
                  !model.templateData->buttons().empty());
    }
  });
}

TEST(Keepable, LeavesOutWhatNoPropertyListCanHold) {
  const Value value = Dictionary{{"a\x01", Null{}},
                                 {"b\x01", "x\x02y\tz\xEF\xBF\xBF"},
                                 {"c", Array{Null{}, 1, Array{Null{}}, Dictionary{{"d", Null{}}}}},
                                 {"e", 2.5}};
  EXPECT_EQ(keepableCopy(value), Value(Dictionary{{"b", "xy\tz"}, {"c", Array{1, Array{}, Dictionary{}}}, {"e", 2.5}}));
  EXPECT_EQ(keepableCopy(Null{}), Value(""));
}

TEST(KeptSize, GrowsWithTextsAndKeys) {
  const std::size_t small = keptSize(Dictionary{{"k", Array{"x"}}});
  EXPECT_EQ(keptSize(Dictionary{{std::string(101, 'k'), Array{std::string(201, 'x')}}}), small + 300);
}

TEST(ButtonClicks, CarryTheStatusToTheObserver) {
  NotificationCenter notifications;
  std::vector<KesuInAppStatus> told;
  observeButtonClicks(notifications, [&told](const KesuInAppStatus& status) { told.push_back(status); });
  const KesuInAppStatus plain;
  const KesuInAppStatus full{1, "m", "c", "Title", "abc", 4, KesuInAppError{HttpError::TimedOut, 500, "late"}};
  postButtonClick(notifications, plain);
  postButtonClick(notifications, full);
  notifications.post(kInAppMessageButtonClickedNotification);
  EXPECT_EQ(told, (std::vector<KesuInAppStatus>{plain, full, plain}));
}

}  // namespace
}  // namespace kesu
