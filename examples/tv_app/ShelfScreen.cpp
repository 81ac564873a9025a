#include "ShelfScreen.h"

#include <kesu.h>

#include <algorithm>
#include <ctime>

namespace tv {
namespace {

constexpr float kMargin = 96.0F;
constexpr float kRowTop = 560.0F;
constexpr float kRowHeight = 372.0F;
constexpr float kCardWidth = 400.0F;
constexpr float kCardHeight = 225.0F;
constexpr float kCardGap = 40.0F;
constexpr float kFocusZoom = 1.1F;
constexpr float kCornerRadius = 16.0F;
constexpr float kBackdropRestSeconds = 0.22F;  // Painting it while the focus moves on would delay that.

std::string timeOfDay() {
  const std::time_t now = std::time(nullptr);
  char text[8] = "";
  std::strftime(text, sizeof text, "%H:%M", std::localtime(&now));
  return text;
}

}  // namespace

ShelfScreen::ShelfScreen(Navigator& navigator) : navigator_(navigator) {
  for (const Shelf& shelf : shelves()) {
    Row row;
    row.zooms.resize(shelf.shows.size(), {1.0F, 1.0F});
    rows_.push_back(row);
  }
  backdrop_ = &show();
  fade_.jump(1.0F);
  settle();
  for (Glide& zoom : rows_[0].zooms) {
    zoom.jump(zoom.target);
  }
}

std::string ShelfScreen::focus() const {
  switch (area_) {
    case Area::Bell:
      return "Messages";
    case Area::Settings:
      return "Settings";
    case Area::Shelves:
      break;
  }
  return show().title;
}

void ShelfScreen::press(kesu::RemoteButton button) {
  if (area_ == Area::Shelves) {
    pressInShelves(button);
  } else {
    pressInBar(button);
  }
  settle();
}

void ShelfScreen::pressInBar(kesu::RemoteButton button) {
  switch (button) {
    case kesu::RemoteButton::Left:
      area_ = Area::Bell;
      break;
    case kesu::RemoteButton::Right:
      area_ = Area::Settings;
      break;
    case kesu::RemoteButton::Down:
      area_ = Area::Shelves;
      break;
    case kesu::RemoteButton::Select:
      area_ == Area::Bell ? navigator_.showMessages() : navigator_.showSettings();
      break;
    case kesu::RemoteButton::Menu:
      navigator_.goBack();
      break;
    case kesu::RemoteButton::Up:
    case kesu::RemoteButton::PlayPause:
      break;
  }
}

void ShelfScreen::pressInShelves(kesu::RemoteButton button) {
  switch (button) {
    case kesu::RemoteButton::Left:
      moveInRow(-1);
      break;
    case kesu::RemoteButton::Right:
      moveInRow(1);
      break;
    case kesu::RemoteButton::Up:
      row_ > 0 ? static_cast<void>(--row_) : static_cast<void>(area_ = Area::Bell);
      break;
    case kesu::RemoteButton::Down:
      row_ = std::min(row_ + 1, rows_.size() - 1);
      break;
    case kesu::RemoteButton::Select:
    case kesu::RemoteButton::PlayPause:
      kesu::KesuContent::postViewed(show().title, shelves()[row_].title, show().id, {{"place", rows_[row_].focused}});
      navigator_.showDetail(show());
      break;
    case kesu::RemoteButton::Menu:
      navigator_.goBack();
      break;
  }
}

void ShelfScreen::moveInRow(int step) {
  Row& row = rows_[row_];
  const int last = static_cast<int>(row.zooms.size()) - 1;
  row.focused = static_cast<std::size_t>(std::clamp(static_cast<int>(row.focused) + step, 0, last));
}

// Sets the targets of everything that glides for the current focus.
void ShelfScreen::settle() {
  for (std::size_t r = 0; r < rows_.size(); ++r) {
    Row& row = rows_[r];
    const float width = static_cast<float>(row.zooms.size()) * (kCardWidth + kCardGap) - kCardGap;
    const float farthest = std::max(0.0F, width - (kScreenWidth - 2.0F * kMargin));
    row.scroll.target = std::clamp((static_cast<float>(row.focused) - 1.0F) * (kCardWidth + kCardGap), 0.0F, farthest);
    for (std::size_t c = 0; c < row.zooms.size(); ++c) {
      row.zooms[c].target = area_ == Area::Shelves && r == row_ && c == row.focused ? kFocusZoom : 1.0F;
    }
  }
  scroll_.target = static_cast<float>(row_);
  restedSeconds_ = 0.0F;
}

bool ShelfScreen::advance(float seconds) {
  bool isMoving = scroll_.isMoving() || fade_.isMoving() || backdrop_ != &show();
  for (Row& row : rows_) {
    row.scroll.advance(seconds);
    isMoving = isMoving || row.scroll.isMoving();
    for (Glide& zoom : row.zooms) {
      zoom.advance(seconds);
      isMoving = isMoving || zoom.isMoving();
    }
  }
  scroll_.advance(seconds);
  fade_.advance(seconds / 2.0F);
  restedSeconds_ += seconds;
  if (backdrop_ != &show() && restedSeconds_ >= kBackdropRestSeconds) {
    formerBackdrop_ = backdrop_;
    backdrop_ = &show();
    fade_ = {0.0F, 1.0F};
  }
  return isMoving;
}

void ShelfScreen::draw(Painter& painter) {
  drawBackdrop(painter);
  drawHero(painter);
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    const float y = kRowTop + (static_cast<float>(row) - scroll_.value) * kRowHeight;
    if (y > kRowTop - kRowHeight && y < kScreenHeight) {
      drawRow(painter, row, y);
    }
  }
  drawBar(painter);
}

void ShelfScreen::drawBackdrop(Painter& painter) {
  const auto drawOne = [&](const Show& show, float opacity) {
    const SDL_FRect rect{480.0F, 0.0F, 1440.0F, 810.0F};
    painter.picture(
        "backdrop " + show.id, rect,
        [&](int width, int height) {
          Picture picture = paintScene(show.scene, width, height);
          fadeInto(picture, palette::kGround, 0.55F, 0.62F);
          return picture;
        },
        0.7F, opacity);
  };
  if (fade_.isMoving() && formerBackdrop_ != nullptr) {
    drawOne(*formerBackdrop_, 1.0F);
  }
  drawOne(*backdrop_, fade_.value);
}

void ShelfScreen::drawHero(Painter& painter) {
  const Show& shown = show();
  painter.text(shown.genre, kMargin, 186.0F, {Weight::Medium, 26.0F, palette::kAccent});
  painter.text(shown.title, kMargin, 218.0F, {Weight::Bold, 84.0F, palette::kBright});
  painter.text(shown.facts, kMargin, 336.0F, {Weight::Regular, 26.0F, palette::kDim});
  painter.paragraph(shown.story, kMargin, 386.0F, 760.0F, 3, {Weight::Light, 30.0F, palette::kBright});
}

void ShelfScreen::drawBar(Painter& painter) {
  painter.roundRect({kMargin, 62.0F, 34.0F, 34.0F}, 10.0F, palette::kAccent);
  painter.icon(Icon::Play, {kMargin + 7.0F, 69.0F, 20.0F, 20.0F}, palette::kBack);
  painter.text("Example TV", kMargin + 50.0F, 58.0F, {Weight::Medium, 34.0F, palette::kBright});
  painter.text(timeOfDay(), 1752.0F, 60.0F, {Weight::Light, 34.0F, palette::kBright});
  const auto button = [&](Icon icon, float x, bool isFocused) {
    const SDL_FRect circle{x, 48.0F, 64.0F, 64.0F};
    painter.roundRect(circle, 32.0F, isFocused ? palette::kBright : palette::kGlass, isFocused ? 1.12F : 1.0F);
    painter.icon(icon, {x + 16.0F, 64.0F, 32.0F, 32.0F}, isFocused ? palette::kBack : palette::kBright);
  };
  button(Icon::Bell, 1560.0F, area_ == Area::Bell);
  button(Icon::Gear, 1648.0F, area_ == Area::Settings);
  if (const std::int64_t unread = navigator_.unreadMessages(); unread > 0) {
    painter.roundRect({1600.0F, 40.0F, 32.0F, 32.0F}, 16.0F, palette::kAlert);
    painter.centeredText(unread > 9 ? "9+" : std::to_string(unread), 1616.0F, 43.0F, {Weight::Bold, 21.0F});
  }
}

void ShelfScreen::drawRow(Painter& painter, std::size_t row, float y) {
  const Shelf& shelf = shelves()[row];
  const bool isFocusedRow = row == row_ && area_ == Area::Shelves;
  painter.text(shelf.title, kMargin, y, {Weight::Medium, 30.0F, isFocusedRow ? palette::kBright : palette::kFaint});
  const auto rectOf = [&](std::size_t card) {
    const float x = kMargin + static_cast<float>(card) * (kCardWidth + kCardGap) - rows_[row].scroll.value;
    return SDL_FRect{x, y + 62.0F, kCardWidth, kCardHeight};
  };
  const auto drawOne = [&](std::size_t card) {
    const SDL_FRect rect = rectOf(card);
    if (rect.x < kScreenWidth && rect.x + rect.w > 0.0F) {
      drawCard(painter, *shelf.shows[card], rect, rows_[row].zooms[card].value,
               isFocusedRow && card == rows_[row].focused);
    }
  };
  for (std::size_t card = 0; card < shelf.shows.size(); ++card) {
    if (card != rows_[row].focused) {
      drawOne(card);
    }
  }
  drawOne(rows_[row].focused);  // Above its neighbours.
}

void ShelfScreen::drawCard(Painter& painter, const Show& show, const SDL_FRect& rect, float zoom, bool isFocused) {
  const SDL_FRect large = grown(rect, zoom);
  const float lift = (zoom - 1.0F) / (kFocusZoom - 1.0F);
  painter.shadow(rect, kCornerRadius, 34.0F, 0.75F * lift, zoom);
  const SDL_FRect frame{rect.x - 4.0F, rect.y - 4.0F, rect.w + 8.0F, rect.h + 8.0F};
  painter.roundRect(frame, kCornerRadius + 4.0F, {255, 255, 255, static_cast<Uint8>(255.0F * lift)}, zoom);
  painter.picture(
      "card " + show.id, large,
      [&](int width, int height) {
        Picture picture = paintScene(show.scene, width, height);
        roundCorners(picture, kCornerRadius * static_cast<float>(width) / kCardWidth);
        return picture;
      },
      kFocusZoom / zoom);
  if (show.watched > 0.0F) {
    const SDL_FRect track{large.x + 20.0F, large.y + large.h - 22.0F, large.w - 40.0F, 6.0F};
    painter.fill(track, {255, 255, 255, 90});
    painter.fill({track.x, track.y, track.w * show.watched, track.h}, palette::kAccent);
  }
  const SDL_Color color = isFocused ? palette::kBright : palette::kDim;
  painter.text(show.title, large.x + 2.0F, large.y + large.h + 10.0F, {Weight::Medium, 25.0F, color});
}

}  // namespace tv
