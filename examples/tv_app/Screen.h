#pragma once

#include <kesu/ui/Remote.h>

#include <cmath>
#include <cstdint>
#include <string>

#include "Painter.h"
#include "Shows.h"

namespace tv {

/// A number that glides to where it is told to be.
struct Glide {
  float value = 0.0F;
  float target = 0.0F;

  void jump(float to) { value = target = to; }
  bool isMoving() const { return value != target; }
  void advance(float seconds) {
    value += (target - value) * (1.0F - std::exp(-13.0F * seconds));
    if (std::abs(target - value) < 0.002F) {
      value = target;
    }
  }
};

/// What screens ask of the app around them.
class Navigator {
 public:
  virtual ~Navigator() = default;
  virtual void showDetail(const Show& show) = 0;
  virtual void showSettings() = 0;
  virtual void showMessages() = 0;
  virtual void goBack() = 0;
  /// A line at the bottom of the screen that goes by itself.
  virtual void say(const std::string& text) = 0;
  virtual std::int64_t unreadMessages() const = 0;
};

/// One screen of the app. It holds its own focus. Main thread.
class Screen {
 public:
  virtual ~Screen() = default;

  /// What the screen is called in the records.
  virtual std::string name() const = 0;
  /// What is focused, in words.
  virtual std::string focus() const = 0;
  virtual void press(kesu::RemoteButton button) = 0;
  /// The screen is left, or another one comes over it.
  virtual void disappeared() {}
  /// Moves what moves. Returns whether something still does.
  virtual bool advance(float seconds) = 0;
  virtual void draw(Painter& painter) = 0;
};

}  // namespace tv
