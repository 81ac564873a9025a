// What the popup's drawing takes: a card with a picture, texts and buttons, as a message has, over a dimmed screen.
#include <kesu/ui/Button.h>
#include <kesu/ui/ImageView.h>
#include <kesu/ui/Label.h>
#include <kesu/ui/Overlay.h>
#include <kesu/ui/Window.h>

#include <memory>

#include "Rows.h"
#include "Session.h"
#include "Stopwatch.h"
#include "drawing/TextLayout.h"
#include "uikit/Animator.h"
#include "uikit/ViewDrawing.h"

namespace kesu::bench {
namespace {

constexpr int kSlides = 30;
constexpr double kSlideSeconds = 0.3;

ImagePtr picture(int width, int height) {
  std::vector<std::uint32_t> pixels;
  for (int i = 0; i < width * height; ++i) {
    pixels.push_back(0xFF000000U | static_cast<std::uint32_t>(i) * 2654435761U >> 8);
  }
  return std::make_shared<const Image>(width, height, std::move(pixels));
}

ViewPtr textIn(View& card, const Rect& frame, const std::string& text, double size) {
  const auto label = std::make_shared<Label>(frame);
  label->setText(text);
  label->setFont({"HelveticaNeue-Light", size});
  label->setNumberOfLines(0);
  card.addSubview(label);
  return label;
}

/// A popup that slides in and out in a window of its own.
class Popup {
 public:
  explicit Popup(ImagePtr image) {
    backdrop_->setBackgroundColor(Color::black().withAlpha(0.7));
    backdrop_->setModal(true);
    card_->setBackgroundColor(Color::white());
    ViewDrawing::setComposited(*card_, true);
    card_->setClipsToBounds(true);
    card_->setCornerRadius(5.0);
    card_->setBorder(1.0, Color::white());
    const auto view = std::make_shared<ImageView>(Rect{0.0, 0.0, 580.0, 290.0});
    view->setImage(std::move(image));
    card_->addSubview(view);
    textIn(*card_, {12.0, 300.0, 557.0, 50.0}, "Ten new episodes", 34.0);
    std::string text;
    for (int i = 0; i < 30; ++i) {
      text += "Some words of a message to read. ";
    }
    textIn(*card_, {12.0, 350.0, 557.0, 460.0}, text, 24.0);
    for (int i = 0; i < 3; ++i) {
      const auto button = std::make_shared<Button>(Rect{8.0 + 190.0 * i, 822.0, 182.0, 74.0});
      button->setTitle("Watch");
      button->setFont({"HelveticaNeue-Light", 30.0});
      button->setTitleColor(Color::black());
      card_->addSubview(button);
    }
    backdrop_->addSubview(card_);
  }

  void show(Window& window) { window.addSubview(backdrop_); }
  void close() { backdrop_->removeFromSuperview(); }
  void slideIn() {
    backdrop_->setAlpha(0.01);
    card_->setCenter({960.0, 1080.0 + 450.0});
    animate(kSlideSeconds, [this] {
      backdrop_->setAlpha(1.0);
      card_->setCenter({960.0, 1080.0 - 450.0});
    });
  }

 private:
  ViewPtr backdrop_ = std::make_shared<View>(Rect{0.0, 0.0, 1920.0, 1080.0});
  ViewPtr card_ = std::make_shared<View>(Rect{670.0, 180.0, 580.0, 900.0});
};

/// The times of every frame of many slides.
template <typename Frame>
std::vector<double> slideTimes(Popup& popup, Overlay& overlay, double& now, Frame frame) {
  std::vector<double> times;
  for (int slide = 0; slide < kSlides; ++slide) {
    popup.slideIn();
    while (overlay.needsFrame()) {
      now += kFrameSeconds;
      times.push_back(secondsOf([&] { frame(now); }));
    }
  }
  return times;
}

}  // namespace

void measurePopup(Figures& figures) {
  const ImagePtr image = picture(1160, 580);
  Window window;
  window.makeKeyAndVisible();
  Overlay overlay;
  double now = 0.0;
  overlay.layers(now);
  const double before = residentMegabytes();
  figures.add(Figure("fonts made ready, warm caches", secondsOf(&prepareFonts) * kMillisecondsPerSecond, "ms"));
  auto popup = std::make_unique<Popup>(image);
  popup->show(window);
  figures.add(
      Figure("first frame of a popup, 1080p", secondsOf([&] { overlay.layers(now); }) * kMillisecondsPerSecond, "ms")
          .atMost(60.0));
  figures.addTimes("slide, frame of layers",
                   slideTimes(*popup, overlay, now, [&](double time) { keep(overlay.layers(time).size()); }), 0.5);
  figures.add(Figure("memory while a popup is shown, layers", residentMegabytes() - before, "MB").atMost(25.0));
  overlay.flatten(now);
  figures.addTimes("slide, flattened 1080p frame",
                   slideTimes(*popup, overlay, now, [&](double time) { keep(overlay.flatten(time).damage); }), 4.0);
  popup->close();
  popup.reset();
  overlay.flatten(now += kFrameSeconds);
  figures.add(Figure("memory kept after it closed", residentMegabytes() - before, "MB").atMost(12.0));
}

}  // namespace kesu::bench
