#include "message_ui/KesuCustomBtn.h"

#include <memory>

#include "uikit/Animator.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

// Kept: these two are single-precision numbers, widened.
constexpr double kScaleFactor = static_cast<double>(1.2F);
constexpr double kDurationSeconds = static_cast<double>(0.2F);
constexpr double kPressedShadowOffset = 10.0;  // Nearer than the focused 27: the button is pushed towards the card.

}  // namespace

void KesuCustomBtn::setup() {
  focusedScaleFactor_ = kScaleFactor;
  focusedShadowRadius_ = 10.0;
  focusedShadowOpacity_ = 0.25;
  shadowOffsetFocussed_ = {0.0, 27.0};
  shadowColor_ = Color::black();
  animationDuration_ = kDurationSeconds;
}

void KesuCustomBtn::didUpdateFocus() {
  animateLook(isFocused() ? &KesuCustomBtn::lookFocused : &KesuCustomBtn::lookNormal);
}

void KesuCustomBtn::pressesBegan(RemoteButton /*button*/) {
  if (isFocused()) {
    animateLook(&KesuCustomBtn::lookPressed);
  }
}

void KesuCustomBtn::pressesEnded(RemoteButton /*button*/) {
  if (isFocused()) {
    animateLook(&KesuCustomBtn::lookReleased);
  }
}

void KesuCustomBtn::pressesCancelled(RemoteButton button) {
  pressesEnded(button);
}

// An interrupted animation sets its look all the same, unless a newer look has interrupted it.
void KesuCustomBtn::animateLook(void (KesuCustomBtn::*look)()) {
  ViewDrawing::setNeedsDisplay(*this);  // What subclasses draw may follow the focus and the size.
  const std::uint64_t number = ++looks_;
  const std::weak_ptr<View> weak = weak_from_this();
  animate(
      animationDuration_, [this, look] { (this->*look)(); },
      [this, weak, look, number](bool finished) {
        const ViewPtr alive = weak.lock();
        if (alive != nullptr && !finished && number == looks_) {
          (this->*look)();
        }
      });
}

void KesuCustomBtn::lookFocused() {
  setTransform(Transform::scale(focusedScaleFactor_));
  setClipsToBounds(false);
  setShadow({shadowColor_, static_cast<double>(static_cast<float>(focusedShadowOpacity_)), focusedShadowRadius_,
             shadowOffsetFocussed_});
}

// The shadow stays as it is: clipping hides it.
void KesuCustomBtn::lookNormal() {
  setClipsToBounds(true);
  setTransform({});
}

void KesuCustomBtn::lookPressed() {
  setTransform({});
  setShadowOffset({0.0, kPressedShadowOffset});
}

void KesuCustomBtn::lookReleased() {
  setTransform(Transform::scale(focusedScaleFactor_));
  setShadowOffset(shadowOffsetFocussed_);
}

void KesuCustomBtn::setShadowOffset(Size offset) {
  Shadow changed = shadow();
  changed.offset = offset;
  setShadow(changed);
}

}  // namespace kesu
