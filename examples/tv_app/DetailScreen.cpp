#include "DetailScreen.h"

#include <kesu.h>

#include <algorithm>

namespace tv {
namespace {

constexpr float kMargin = 96.0F;
constexpr float kButtonTop = 690.0F;
constexpr float kButtonHeight = 78.0F;
constexpr float kFilmSeconds = 90.0F;  // Films are short in this example.

}  // namespace

DetailScreen::DetailScreen(Navigator& navigator, const Show& show, std::set<std::string>& myList)
    : navigator_(navigator), show_(show), myList_(myList), watched_(show.watched) {}

std::string DetailScreen::focus() const {
  return title(static_cast<Button>(focused_));
}

std::string DetailScreen::title(Button button) const {
  switch (button) {
    case kPlay:
      return isPlaying_ ? "Pause" : watched_ > 0.0F ? "Continue" : "Play";
    case kMyList:
      return "My list";
    case kMessages:
    case kButtonCount:
      break;
  }
  return "Messages";
}

Icon DetailScreen::icon(Button button) const {
  switch (button) {
    case kPlay:
      return isPlaying_ ? Icon::Pause : Icon::Play;
    case kMyList:
      return isKept() ? Icon::Check : Icon::Plus;
    case kMessages:
    case kButtonCount:
      break;
  }
  return Icon::Letter;
}

void DetailScreen::press(kesu::RemoteButton button) {
  switch (button) {
    case kesu::RemoteButton::Left:
      focused_ = std::max(focused_ - 1, 0);
      break;
    case kesu::RemoteButton::Right:
      focused_ = std::min(focused_ + 1, kButtonCount - 1);
      break;
    case kesu::RemoteButton::Select:
      activate();
      break;
    case kesu::RemoteButton::PlayPause:
      isPlaying_ ? pause() : play();
      break;
    case kesu::RemoteButton::Menu:
      navigator_.goBack();
      break;
    case kesu::RemoteButton::Up:
    case kesu::RemoteButton::Down:
      break;
  }
}

void DetailScreen::activate() {
  switch (static_cast<Button>(focused_)) {
    case kPlay:
      isPlaying_ ? pause() : play();
      break;
    case kMyList:
      toggleMyList();
      break;
    case kMessages:
    case kButtonCount:
      navigator_.showMessages();
      break;
  }
}

void DetailScreen::play() {
  isPlaying_ = true;
  playedSince_ = kesu::Kesu::timerReference();
  kesu::KesuCustomEvent::postWithEventName("PlaybackStarted", {{"title", show_.title}, {"at", watched_}});
}

// One event with how long it was watched, one with how far.
void DetailScreen::pause() {
  if (!isPlaying_) {
    return;
  }
  isPlaying_ = false;
  kesu::KesuCustomEvent::postTimedWithEventName("PlaybackEnded", playedSince_, {{"title", show_.title}});
  kesu::KesuMedia::postPlayedMedia(show_.title, "video", show_.genre, static_cast<int>(watched_ * 100.0F), show_.id);
}

void DetailScreen::toggleMyList() {
  if (isKept()) {
    myList_.erase(show_.id);
    kesu::KesuCustomEvent::postWithEventName("RemovedFromMyList", {{"title", show_.title}});
    navigator_.say("Taken off your list");
  } else {
    myList_.insert(show_.id);
    kesu::KesuMedia::postRatedThumbsUp(show_.title, show_.genre, show_.id);
    navigator_.say("Added to your list");
  }
}

void DetailScreen::disappeared() {
  pause();
}

bool DetailScreen::advance(float seconds) {
  if (isPlaying_) {
    watched_ = std::min(watched_ + seconds / kFilmSeconds, 1.0F);
    if (watched_ >= 1.0F) {
      pause();
      watched_ = 0.0F;
    }
  }
  return isPlaying_;
}

void DetailScreen::draw(Painter& painter) {
  painter.picture(
      "key art " + show_.id, {0.0F, 0.0F, kScreenWidth, kScreenHeight},
      [&](int width, int height) {
        Picture picture = paintScene(show_.scene, width, height);
        fadeInto(picture, palette::kGround, 0.78F, 0.42F);
        return picture;
      },
      0.67F);
  painter.text(show_.genre, kMargin, 288.0F, {Weight::Medium, 28.0F, palette::kAccent});
  painter.text(show_.title, kMargin, 320.0F, {Weight::Bold, 108.0F, palette::kBright});
  painter.text(show_.facts, kMargin, 470.0F, {Weight::Regular, 28.0F, palette::kDim});
  painter.paragraph(show_.story, kMargin, 526.0F, 860.0F, 3, {Weight::Light, 34.0F, palette::kBright});
  float x = kMargin;
  for (int i = 0; i < kButtonCount; ++i) {
    const auto button = static_cast<Button>(i);
    const float width = 116.0F + painter.textWidth(title(button), {Weight::Medium, 30.0F});
    drawButton(painter, button, x, width);
    x += width + 28.0F;
  }
  drawProgress(painter);
}

void DetailScreen::drawButton(Painter& painter, Button button, float x, float width) {
  const bool isFocused = button == focused_;
  const SDL_FRect rect{x, kButtonTop, width, kButtonHeight};
  if (isFocused) {
    painter.shadow(rect, kButtonHeight / 2.0F, 28.0F, 0.6F);
  }
  const SDL_Color ink = isFocused ? palette::kBack : palette::kBright;
  painter.roundRect(rect, kButtonHeight / 2.0F, isFocused ? palette::kBright : palette::kGlass,
                    isFocused ? 1.06F : 1.0F);
  painter.icon(icon(button), {x + 34.0F, kButtonTop + 26.0F, 26.0F, 26.0F}, ink);
  painter.text(title(button), x + 76.0F, kButtonTop + 20.0F, {Weight::Medium, 30.0F, ink});
}

void DetailScreen::drawProgress(Painter& painter) {
  if (watched_ <= 0.0F) {
    return;
  }
  const SDL_FRect track{kMargin, 820.0F, 560.0F, 6.0F};
  painter.roundRect(track, 3.0F, {255, 255, 255, 60});
  painter.fill({track.x, track.y, track.w * watched_, track.h}, palette::kAccent);
  painter.text(std::to_string(static_cast<int>(watched_ * 100.0F)) + " % watched", track.x + track.w + 24.0F, 804.0F,
               {Weight::Regular, 26.0F, palette::kDim});
}

}  // namespace tv
