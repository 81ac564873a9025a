#pragma once

#include <kesu/graphics/Color.h>
#include <kesu/ui/Window.h>

#include <memory>

namespace kesu::testing {

/// A new view within another one.
template <typename Kind = View>
std::shared_ptr<Kind> viewIn(View& superview, const Rect& frame, const Color& background = Color::clear()) {
  auto view = std::make_shared<Kind>(frame);
  view->setBackgroundColor(background);
  superview.addSubview(view);
  return view;
}

/// A window with a card, a bar in it, and a button in the bar.
struct CardWindow {
  Window window;
  std::shared_ptr<View> card = viewIn(window, {100.0, 50.0, 600.0, 400.0});
  std::shared_ptr<View> bar = viewIn(*card, {0.0, 300.0, 600.0, 100.0});
  std::shared_ptr<View> button = viewIn(*bar, {200.0, 20.0, 100.0, 60.0});
};

}  // namespace kesu::testing
