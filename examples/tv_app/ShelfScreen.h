#pragma once

#include <vector>

#include "Screen.h"

namespace tv {

/// The first screen: shelves of shows, the focused one large behind them, and the bell and the settings above.
class ShelfScreen : public Screen {
 public:
  explicit ShelfScreen(Navigator& navigator);

  std::string name() const override { return "Shelf"; }
  std::string focus() const override;
  void press(kesu::RemoteButton button) override;
  bool advance(float seconds) override;
  void draw(Painter& painter) override;

 private:
  enum class Area { Bell, Settings, Shelves };
  struct Row {
    std::size_t focused = 0;
    Glide scroll;  // Points.
    std::vector<Glide> zooms;
  };

  const Show& show() const { return *shelves()[row_].shows[rows_[row_].focused]; }
  void pressInBar(kesu::RemoteButton button);
  void pressInShelves(kesu::RemoteButton button);
  void moveInRow(int step);
  void settle();
  void drawBackdrop(Painter& painter);
  void drawHero(Painter& painter);
  void drawBar(Painter& painter);
  void drawRow(Painter& painter, std::size_t row, float y);
  void drawCard(Painter& painter, const Show& show, const SDL_FRect& rect, float zoom, bool isFocused);

  Navigator& navigator_;
  std::vector<Row> rows_;
  std::size_t row_ = 0;
  Area area_ = Area::Shelves;
  Glide scroll_;  // Rows.
  const Show* backdrop_ = nullptr;
  const Show* formerBackdrop_ = nullptr;
  Glide fade_;
  float restedSeconds_ = 0.0F;
};

}  // namespace tv
