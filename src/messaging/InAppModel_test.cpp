#include "messaging/InAppModel.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

namespace kesu {
namespace {

Color opaque(int red, int green, int blue) {
  return {red / 255.0, green / 255.0, blue / 255.0, 1.0};
}

const Color kButtonBlue = opaque(9, 182, 238);

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
  EXPECT_EQ(data.titleColor(), opaque(0x10, 0x20, 0x30));
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

TEST(InAppModel, LeavesMissingEntriesUnset) {
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
  const ButtonRow rows[] = {{0, "A", "a://", opaque(4, 5, 6), opaque(1, 2, 3)},
                            {1, "B", "b://", opaque(7, 8, 9), opaque(7, 8, 9)},
                            {2, "C", "c://", white, kButtonBlue},
                            {3, std::nullopt, "", white, kButtonBlue},
                            {4, std::nullopt, "", white, kButtonBlue},
                            {5, "D", "d://", white, kButtonBlue},
                            {6, "E", "e://", std::nullopt, std::nullopt},
                            {7, std::nullopt, "", white, kButtonBlue},
                            {8, std::nullopt, "", white, std::nullopt},
                            {9, std::nullopt, "", white, std::nullopt}};
  for (const ButtonRow& row : rows) {
    expectButton(*model.templateData, row);
  }
}

TEST(InAppTemplateData, HasDefaultColoursWhenAsked) {
  const auto model = message("", kTemplate, true);
  EXPECT_EQ(model.templateData->titleColor(), Color::white());
  EXPECT_EQ(model.templateData->messageColor(), Color::white());
  EXPECT_EQ(model.templateData->canvasColor(), Color::white());
  expectButton(*model.templateData, {0, "A", "a://", Color::white(), kButtonBlue});
}

}  // namespace
}  // namespace kesu
