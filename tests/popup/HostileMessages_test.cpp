// Messages that a service should never send, through the whole library: nothing crashes, every layer has finite
// coordinates, and memory stays small. The sanitizers' build refuses every allocation over the limit.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "testing/ChildProcess.h"
#include "testing/MemoryPeak.h"
#include "testing/NestedValues.h"
#include "testing/TemporaryDirectory.h"
#include "tests/popup/PopupStage.h"

// The address sanitizer asks for this before main().
extern "C" __attribute__((used, visibility("default"))) const char* __asan_default_options() {
  return "max_allocation_size_mb=64:allocator_may_return_null=0";
}

namespace kesu {
namespace {

using testing::MemoryPeak;
using testing::payloadOf;
using testing::PopupStage;

constexpr long kLimitKilobytes = 64 * 1024;

Dictionary withPicture(const Value& width, const Value& height) {
  return {{"imageSourceURL", std::string(PopupStage::kExamplePictures) + "sunrise.jpg"},
          {"imageWidth", width},
          {"imageHeight", height}};
}

Value entries(int count) {
  Array array;
  for (int i = 0; i < count; ++i) {
    array.push_back(Value(Array{Value("Button " + std::to_string(i)), Value("")}));
  }
  return array;
}

Dictionary withButtons(Value buttons) {
  Dictionary data;
  data.set("buttons", std::move(buttons));
  return data;
}

Dictionary withColors(const std::string& color) {
  Dictionary data{{"titleColor", color}, {"msgColor", color}, {"canvas_bgColor", color}};
  data.set("buttons", Array{Value(Array{Value("OK"), Value(""), Value(color), Value(color)})});
  return data;
}

Array malformedEntries() {
  return {Value(Array{}),
          Value("a text"),
          Value(7),
          Value(nullptr),
          Value(Dictionary{{"title", "a"}}),
          Value(Array{Value(1), Value(2), Value(3), Value(4)}),
          Value(Array{Value(nullptr)}),
          Value(Array{Value(Array{}), Value(Dictionary{})})};
}

std::vector<std::pair<std::string, Dictionary>> hostileMessages() {
  std::vector<std::pair<std::string, Dictionary>> all;
  const auto add = [&all](const std::string& name, const Dictionary& data, const std::string& templateId = "p_temp_2") {
    all.emplace_back(name, payloadOf("A title", "A text.", data, templateId));
  };
  const std::pair<Value, Value> sizes[] = {
      {0, 0},           {-1, -1},       {1, 2000000000}, {2000000000, 1}, {-5, 700},
      {"wide", "high"}, {1e308, 1e308}, {nullptr, 3},    {1e-300, 5.0},   {INT64_MIN, INT64_MAX}};
  for (const auto& [width, height] : sizes) {
    for (const char* id : {"p_temp_1", "p_temp_2"}) {
      add("picture of a size that is none", withPicture(width, height), id);
    }
  }
  for (const int count : {0, 1, 200, 5000}) {
    add(std::to_string(count) + " buttons", withButtons(entries(count)));
  }
  add("malformed buttons", withButtons(malformedEntries()));
  for (const Value& none : {Value("text"), Value(3), Value(nullptr), Value(Dictionary{})}) {
    add("buttons that are none", withButtons(none));
  }
  for (const char* color : {"", "#", "#zz", "-1", "0x", "#FFFFFFFFFFFFFFFFFFFF", "\xff\xfe", "%s%n", "red"}) {
    add(std::string("colour ") + color, withColors(color));
  }
  for (const char* word : {"word ", "w", "\n",
                           "\xe2\x80\xae\xf0\x9f\x8d\xbf"
                           "e\xcc\x81",
                           "\xff\xc0"}) {
    const std::string text = testing::repeated(word, (1U << 20U) / std::string_view(word).size());
    all.emplace_back("1 MB as title", payloadOf(text, "A text.", withButtons(entries(2))));
    all.emplace_back("1 MB as title over a picture", payloadOf(text, "", withPicture(100, 50), "p_temp_1"));
    all.emplace_back("1 MB as text", payloadOf("A title", text, withButtons(entries(2))));
    all.emplace_back("1 MB on a button",
                     payloadOf("A title", "", withButtons(Array{Value(Array{Value(text), Value("")})})));
    all.emplace_back("1 MB as colour", payloadOf("A title", "A text.", {{"canvas_bgColor", text}}));
  }
  return all;
}

bool isFinite(const std::vector<double>& numbers) {
  return std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); });
}

/// Returns what is wrong with a popup that shows such a message; empty for nothing.
std::string faultOf(PopupStage& stage) {
  for (const FrameLayer& layer : stage.overlay->layers(1e6)) {
    if (!isFinite({layer.x, layer.y, layer.width, layer.height, layer.alpha, layer.color.red, layer.color.alpha})) {
      return "a layer without a place";
    }
  }
  for (const AccessibilityNode& node : stage.overlay->accessibilityTree()) {
    if (!isFinite({node.frame.x, node.frame.y, node.frame.width, node.frame.height})) {
      return "an element without a place";
    }
  }
  return stage.picture(1280, 720) != nullptr ? "" : "no picture";
}

std::string showAndUse(const Dictionary& payload) {
  PopupStage stage;
  stage.show({payload, payload});
  if (!stage.overlay->isModal()) {
    return "it does not appear";
  }
  std::string fault = faultOf(stage);
  for (const RemoteButton button : {RemoteButton::Up, RemoteButton::Down, RemoteButton::Right, RemoteButton::Select}) {
    stage.press(button);
  }
  stage.swipe(SwipeDirection::Left);
  fault += faultOf(stage);
  stage.press(RemoteButton::Menu);
  return fault + (stage.overlay->isModal() ? "it does not close" : "");
}

TEST(HostileMessages, AreShownAndClosedAsAnyOther) {
  EXPECT_EQ(showAndUse(payloadOf("A title", "A text.", withButtons(entries(2)))), "") << "a plain one";
  for (const auto& [name, payload] : hostileMessages()) {
    const MemoryPeak peak;
    EXPECT_EQ(showAndUse(payload), "") << name;
    EXPECT_LT(peak.kilobytes(), kLimitKilobytes) << name;
  }
}

// Run by the test below, in a process that finds no font.
TEST(HostileMessages, DISABLED_ShowsWithoutFonts) {
  for (const char* text : {"A title", "夜行列車", "عاد", "🍿", "\xff"}) {
    EXPECT_EQ(showAndUse(payloadOf(text, text, withButtons(entries(2)))), "") << text;
  }
}

TEST(HostileMessages, AreShownWithoutAnyFont) {
  const testing::TemporaryDirectory directory;
  const std::string file = directory.path() + "/fonts.conf";
  std::ofstream(file) << "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"fonts.dtd\"><fontconfig></fontconfig>";
  const auto status = testing::runInChild([&file] {
    ::setenv("FONTCONFIG_FILE", file.c_str(), 1);
    ::execl("/proc/self/exe", "popup_test", "--gtest_also_run_disabled_tests",
            "--gtest_filter=HostileMessages.DISABLED_ShowsWithoutFonts", "--gtest_brief=1", nullptr);
    return 255;
  });
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace kesu
