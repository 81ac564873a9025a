#pragma once

#include <kesu/ui/Remote.h>

#include <cmath>
#include <cstdint>
#include <string>

#include "Painter.h"
#include "Shows.h"

namespace tv {

/// A number that approaches its target gradually.
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

/// What a screen can ask of the app.
class Navigator {
 public:
  virtual ~Navigator() = default;
  virtual void showDetail(const Show& show) = 0;
  virtual void showSettings() = 0;
  virtual void showMessages() = 0;
  virtual void goBack() = 0;
  /// Shows a line at the bottom of the screen for a few seconds.
  virtual void say(const std::string& text) = 0;
  virtual std::int64_t unreadMessages() const = 0;
};

/// One screen of the app, with a focus of its own. Main thread.
class Screen {
 public:
  virtual ~Screen() = default;

  /// Returns the name of the screen in the records.
  virtual std::string name() const = 0;
  /// Returns the name of what is focused.
  virtual std::string focus() const = 0;
  virtual void press(kesu::RemoteButton button) = 0;
  /// Called when the screen is left or covered by another one.
  virtual void disappeared() {}
  /// Advances animations. Returns whether any is still running.
  virtual bool advance(float seconds) = 0;
  virtual void draw(Painter& painter) = 0;
};

}  // namespace tv
