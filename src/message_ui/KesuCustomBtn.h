#pragma once

#include <kesu/ui/Button.h>

#include <cstdint>
#include <functional>

namespace kesu {

/// The button of message cards: it grows and casts a shadow while it is focused, and looks pushed in while the remote's
/// button is pressed. Main thread. Call setup() first: without it the focus would scale the button to nothing.
class KesuCustomBtn : public Button {
 public:
  using Button::Button;

  /// Sets the properties below to what message cards use.
  void setup();

  double focusedScaleFactor() const { return focusedScaleFactor_; }

  void didUpdateFocus() override;
  void pressesBegan(RemoteButton button) override;
  void pressesEnded(RemoteButton button) override;
  void pressesCancelled(RemoteButton button) override;

  // Owed to the agreed interface; no caller inside the library.

  void setFocusedScaleFactor(double factor) { focusedScaleFactor_ = factor; }
  double focusedShadowRadius() const { return focusedShadowRadius_; }
  void setFocusedShadowRadius(double radius) { focusedShadowRadius_ = radius; }
  double focusedShadowOpacity() const { return focusedShadowOpacity_; }
  void setFocusedShadowOpacity(double opacity) { focusedShadowOpacity_ = opacity; }
  Size shadowOffsetFocussed() const { return shadowOffsetFocussed_; }
  void setShadowOffsetFocussed(Size offset) { shadowOffsetFocussed_ = offset; }
  const Color& shadowColor() const { return shadowColor_; }
  void setShadowColor(const Color& color) { shadowColor_ = color; }
  double animationDuration() const { return animationDuration_; }  ///< Seconds.
  void setAnimationDuration(double seconds) { animationDuration_ = seconds; }

 private:
  void animateLook(void (KesuCustomBtn::*look)());
  void lookFocused();
  void lookNormal();
  void lookPressed();
  void lookReleased();
  void setShadowOffset(Size offset);

  double focusedScaleFactor_ = 0.0;
  double focusedShadowRadius_ = 0.0;
  double focusedShadowOpacity_ = 0.0;
  Size shadowOffsetFocussed_;
  Color shadowColor_ = Color::clear();
  double animationDuration_ = 0.0;
  std::uint64_t looks_ = 0;  // Counts the looks that were begun.
};

}  // namespace kesu
