#pragma once

#include <set>

#include "Screen.h"

namespace tv {

/// The details of one show, with buttons to watch it, to add it to the list and to read messages.
class DetailScreen : public Screen {
 public:
  /// `myList` contains the ids of the shows on the user's list; it must outlive the screen.
  DetailScreen(Navigator& navigator, const Show& show, std::set<std::string>& myList);

  std::string name() const override { return "Detail"; }
  std::string focus() const override;
  void press(kesu::RemoteButton button) override;
  void disappeared() override;
  bool advance(float seconds) override;
  void draw(Painter& painter) override;

 private:
  enum Button { kPlay, kMyList, kMessages, kButtonCount };

  bool isKept() const { return myList_.contains(show_.id); }
  std::string title(Button button) const;
  Icon icon(Button button) const;
  void activate();
  void play();
  void pause();
  void toggleMyList();
  void drawButton(Painter& painter, Button button, float x, float width);
  void drawProgress(Painter& painter);

  Navigator& navigator_;
  const Show& show_;
  std::set<std::string>& myList_;
  int focused_ = kPlay;
  bool isPlaying_ = false;
  double playedSince_ = 0.0;  // A timer reference of the library.
  float watched_;
};

}  // namespace tv
