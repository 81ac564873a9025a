// Every composition of the popup at three sizes of the screen, in one picture to look at: contact-sheet.png beside this
// program. With KESU_FULL_PICTURES=1 each is also written in full size.
#include <gtest/gtest.h>
#include <kesu/message_ui/KesuInAppOptions.h>
#include <kesu/ui/Window.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "drawing/TextLayout.h"
#include "testing/FontRelease.h"
#include "testing/MemoryPeak.h"
#include "tests/popup/PopupPictures.h"
#include "tests/popup/PopupStage.h"

namespace kesu {
namespace {

using testing::examplePayload;
using testing::payloadOf;
using testing::PopupStage;

struct Composition {
  std::string caption;
  std::vector<Dictionary> messages;
  std::function<void(PopupStage&)> act;
  std::string heard;  ///< Part of what a screen reader reads.
};

struct ScreenSize {
  int width;
  int height;
};

std::vector<ScreenSize> screenSizes() {
  return testing::kIsSanitized ? std::vector<ScreenSize>{{1280, 720}}  // The finest size is slow there.
                               : std::vector<ScreenSize>{{1280, 720}, {1920, 1080}, {3840, 2160}};
}

Value buttons(const std::vector<std::string>& titles) {
  const std::vector<std::string> colors = {"#2E6BD6", "#1B998B", "#8E44AD", "#C8553D", "#46505F"};
  Array entries;
  for (const std::string& title : titles) {
    entries.push_back(Value(Array{Value(title), Value(""), Value(colors[entries.size() % 5]), Value("#FFFFFF")}));
  }
  return entries;
}

Dictionary dark(const std::vector<std::string>& titles, const std::string& picture = {}) {
  Dictionary data{{"titleColor", "#FFFFFF"}, {"msgColor", "#E4E8F0"}, {"canvas_bgColor", "#1C2433"}};
  data.set("buttons", buttons(titles));
  if (!picture.empty()) {
    data.set("imageSourceURL", picture);
    data.set("imageWidth", 1160);
    data.set("imageHeight", 652);
  }
  return data;
}

constexpr const char* kTitle = "Ten new episodes";
constexpr const char* kText =
    "Season two leaves the station tonight. Six carriages, one missing passenger, and a conductor who swears the "
    "train never stopped.";

std::vector<Dictionary> one(Dictionary payload) {
  return {std::move(payload)};
}

std::vector<Dictionary> three() {
  return {examplePayload("night-train"), examplePayload("sunrise"), examplePayload("arcade")};
}

std::string longTitle() {
  std::string title = "A title that never ends:";
  for (int i = 0; i < 20; ++i) {
    title += " and another clause of it,";
  }
  return title;
}

void showBadge(PopupStage& stage) {
  Window* window = Application::shared().keyWindow();
  auto icon = std::make_shared<View>(Rect{860.0, 440.0, 200.0, 200.0});
  icon->setBackgroundColor({0.2, 0.3, 0.55, 1.0});
  icon->setCornerRadius(24.0);
  window->addSubview(icon);
  Kesu::addBadge(icon.get());
  stage.settle();
}

void showWith(PopupStage& stage, const KesuInAppOptions& options) {
  Kesu::dismissInAppNotificationUI(false);
  stage.settle();
  Kesu::setInAppOptions(options);
  stage.show(three());
}

std::vector<Composition> withPictures() {
  const std::string sunrise = std::string(PopupStage::kExamplePictures) + "sunrise.jpg";
  const std::string slow = std::string(PopupStage::kSlowPictures) + "a.jpg";
  const std::string gone = std::string(PopupStage::kGonePictures) + "a.jpg";
  Dictionary light{{"titleColor", "#222222"}, {"msgColor", "#444444"}, {"canvas_bgColor", "#FFFFFF"}};
  light.set("buttons", buttons({"Watch", "Later"}));
  return {
      {"image, title, text", one(examplePayload("night-train")), {}, "Watch now*"},
      {"two buttons, light", one(examplePayload("sunrise")), {}, "First Light"},
      {"one button", one(examplePayload("arcade")), {}, "Get the coupon*"},
      {"title over image", one(examplePayload("awkward/title-over-image")), {}, "Northern Lights"},
      {"over a bright image", one(payloadOf(kTitle, kText, dark({"Watch"}, sunrise), "p_temp_1")), {}, kTitle},
      {"long title over image", one(payloadOf(longTitle(), kText, dark({"OK"}, sunrise), "p_temp_1")), {}, "OK*"},
      {"image loading", one(payloadOf(kTitle, kText, dark({"Watch", "Later"}, slow))), {}, "Watch*"},
      {"image failed", one(payloadOf(kTitle, kText, dark({"Watch", "Later"}, gone))), {}, "Watch*"},
      {"loading, title over it", one(payloadOf(kTitle, kText, dark({"Watch"}, slow), "p_temp_1")), {}, kTitle},
      {"image of wrong size", one(examplePayload("awkward/wrong-image-size")), {}, "OK*"},
      {"no image", one(payloadOf(kTitle, kText, dark({"Watch", "Later"}))), {}, kTitle},
      {"no image, light", one(payloadOf(kTitle, kText, light)), {}, kTitle},
  };
}

std::vector<Composition> withTexts() {
  const auto scroll = [](PopupStage& stage) {
    stage.press(RemoteButton::Up);
    for (int i = 0; i < 4; ++i) {
      stage.press(RemoteButton::Down);
    }
  };
  return {
      {"nothing to show", {}, {}, "No messages to show."},
      {"no buttons", one(examplePayload("awkward/no-buttons")), {}, ""},
      {"text only", one(payloadOf("", kText, dark({}))), {}, "Season two"},
      {"title only", one(payloadOf(kTitle, "", dark({"OK"}))), {}, kTitle},
      {"very long title", one(examplePayload("awkward/very-long-title")), {}, "OK*"},
      {"long text", one(examplePayload("awkward/very-long-text")), {}, ""},
      {"long text, scrolled", one(examplePayload("awkward/very-long-text")), scroll, ""},
      {"Japanese", one(examplePayload("awkward/japanese")), {}, ""},
      {"Arabic", one(examplePayload("awkward/arabic")), {}, "عاد قطار الليل"},
      {"Hindi", one(examplePayload("awkward/hindi")), {}, ""},
      {"emoji", one(examplePayload("awkward/emoji")), {}, "🍿"},
      {"colours that are none", one(examplePayload("awkward/bad-colours")), {}, "No mark*"},
      {"broken buttons", one(examplePayload("awkward/broken-buttons")), {}, ""},
  };
}

std::vector<Composition> withButtons() {
  const std::vector<std::string> titles = {"Play", "Trailer", "My list", "Remind me later", "No"};
  std::vector<Composition> compositions;
  for (std::ptrdiff_t count = 1; count <= 5; ++count) {
    const std::vector<std::string> some(titles.begin(), titles.begin() + count);
    compositions.push_back({std::to_string(count) + " of five buttons",
                            one(payloadOf(kTitle, kText, dark(some))),
                            {},
                            some.back() + (count == 1 ? "*" : "")});
  }
  const auto right = [](PopupStage& stage) { stage.press(RemoteButton::Right); };
  const auto hold = [](PopupStage& stage) { stage.hold(RemoteButton::Select); };
  const auto down = [](PopupStage& stage) { stage.press(RemoteButton::Down); };
  const auto left = [](PopupStage& stage) { stage.swipe(SwipeDirection::Left); };
  const auto twice = [](PopupStage& stage) {
    stage.swipe(SwipeDirection::Left);
    stage.swipe(SwipeDirection::Left);
  };
  const std::vector<Composition> others = {
      {"second button focused", three(), right, "Remind me*"},
      {"button pressed", three(), hold, "Watch now*"},
      {"first of three", three(), {}, "Showing 1 of 3"},
      {"arrow focused", three(), down, "Next message*"},
      {"middle of three", three(), left, "Showing 2 of 3"},
      {"last of three", three(), twice, "Showing 3 of 3"},
      {"unread badge", {}, {}, ""},
      {"texts 1.6 times as large", {}, {}, "Showing 1 of 3"},
      {"inset for overscan", {}, {}, "Showing 1 of 3"},
  };
  compositions.insert(compositions.end(), others.begin(), others.end());
  compositions[11].act = [](PopupStage& stage) {
    stage.close();
    showBadge(stage);
  };
  compositions[12].act = [](PopupStage& stage) {
    KesuInAppOptions options;
    options.textScale = 1.6;
    showWith(stage, options);
  };
  compositions[13].act = [](PopupStage& stage) {
    KesuInAppOptions options;
    options.screenInsets = {54.0, 96.0, 54.0, 96.0};
    showWith(stage, options);
  };
  return compositions;
}

std::vector<Composition> allCompositions() {
  std::vector<Composition> all = withPictures();
  for (const auto& more : {withTexts(), withButtons()}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

/// Small pictures in rows, with captions: a section for each size of the screen.
class ContactSheet {
 public:
  ContactSheet(std::size_t sections, std::size_t cells)
      : rows_((cells + kColumns - 1) / kColumns),
        sheet_(kColumns * kCellWidth + kGap, static_cast<int>(sections) * sectionHeight()),
        canvas_(sheet_.canvas(1.0)) {
    canvas_->fill({0.0, 0.0, static_cast<double>(sheet_.width), static_cast<double>(sheet_.height)},
                  {0.08, 0.08, 0.1, 1.0});
  }

  void addHeading(std::size_t section, const std::string& text) {
    write(text, 28.0, {kGap, static_cast<double>(section) * sectionHeight(), 900.0, kHeading});
  }

  void addCell(std::size_t section, std::size_t cell, const std::string& caption, const ImagePtr& picture) {
    const double x = kGap + static_cast<double>(cell % kColumns) * kCellWidth;
    const auto row = cell / kColumns;
    const double y = static_cast<double>(section) * sectionHeight() + kHeading + static_cast<double>(row) * kCellHeight;
    canvas_->drawImage(picture, {0.0, 0.0, testing::kThumbnailWidth, testing::kThumbnailHeight},
                       {x, y, testing::kThumbnailWidth, testing::kThumbnailHeight});
    write(caption, 20.0, {x, y + testing::kThumbnailHeight + 4.0, testing::kThumbnailWidth, 28.0});
  }

  bool save(const std::string& path) const { return testing::writePng(path, *sheet_.image()); }

 private:
  static constexpr int kColumns = 10;
  static constexpr int kGap = 16;
  static constexpr int kCellWidth = testing::kThumbnailWidth + kGap;
  static constexpr int kCellHeight = testing::kThumbnailHeight + 44;
  static constexpr int kHeading = 48;

  int sectionHeight() const { return kHeading + static_cast<int>(rows_) * kCellHeight; }

  void write(const std::string& text, double size, const Rect& box) {
    const TextLayout layout(text, {{"Roboto", size}, TextAlignment::Natural, 1, 0.7}, box.size());
    canvas_->drawText(layout, box.origin(), {0.9, 0.9, 0.92, 1.0});
  }

  std::size_t rows_;
  testing::Sheet sheet_;
  std::unique_ptr<Canvas> canvas_;
};

std::filesystem::path ownDirectory() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

void writeFullPicture(const std::string& caption, const ScreenSize& size, const ImagePtr& popup) {
  std::string name = caption + "-" + std::to_string(size.height) + ".png";
  std::replace(name.begin(), name.end(), ' ', '-');
  EXPECT_TRUE(testing::writePng((ownDirectory() / name).string(), *testing::overHost(popup)));
}

// The sheet is for eyes; what can be checked without them: each composition shows its parts, and looks alike at every
// size of the screen.
TEST(ContactSheet, ShowsEveryCompositionAlikeAtEverySize) {
  const std::vector<Composition> compositions = allCompositions();
  const std::vector<ScreenSize> sizes = screenSizes();
  ContactSheet sheet(sizes.size(), compositions.size());
  for (std::size_t cell = 0; cell < compositions.size(); ++cell) {
    const Composition& composition = compositions[cell];
    SCOPED_TRACE(composition.caption);
    PopupStage stage;
    stage.show(composition.messages);
    if (composition.act) {
      composition.act(stage);
    }
    EXPECT_NE(stage.heard().find(composition.heard), std::string::npos) << stage.heard();
    ImagePtr first;
    for (std::size_t section = 0; section < sizes.size(); ++section) {
      const ImagePtr popup = stage.picture(sizes[section].width, sizes[section].height);
      const ImagePtr small = testing::thumbnail(popup, true);
      first = first != nullptr ? first : small;
      const testing::Difference difference = testing::differenceOf(*first, *small);
      EXPECT_TRUE(difference.isSlight()) << difference.mean << " " << difference.largest;
      sheet.addHeading(section, std::to_string(sizes[section].width) + " x " + std::to_string(sizes[section].height));
      sheet.addCell(section, cell, composition.caption, small);
      if (std::getenv("KESU_FULL_PICTURES") != nullptr) {
        writeFullPicture(composition.caption, sizes[section], popup);
      }
    }
    releaseDrawingCaches();
  }
  const std::string path = (ownDirectory() / "contact-sheet.png").string();
  ASSERT_TRUE(sheet.save(path));
  std::cout << "contact sheet: " << path << std::endl;
}

}  // namespace
}  // namespace kesu
