#pragma once

#include <kesu/Export.h>
#include <kesu/ui/Accessibility.h>
#include <kesu/ui/Remote.h>

#include <memory>
#include <optional>
#include <vector>

namespace kesu {

class GestureRecognizer;

/// What the remote and a screen reader meet in a view: focus, presses, accessibility. Main thread.
class KESU_API Responder {
 public:
  virtual ~Responder();

  Responder(const Responder&) = delete;
  Responder& operator=(const Responder&) = delete;

  /// Whether this view and its subviews can be focused and touched.
  bool isUserInteractionEnabled() const { return isUserInteractionEnabled_; }
  void setUserInteractionEnabled(bool enabled) { isUserInteractionEnabled_ = enabled; }

  // Exactly one view of a window is focused while a modal view contains any that can be.
  virtual bool canBecomeFocused() const { return false; }
  bool isFocused() const { return isFocused_; }
  /// Called when isFocused() has changed.
  virtual void didUpdateFocus() {}

  // Called for Select on the focused view.
  virtual void pressesBegan(RemoteButton /*button*/) {}
  virtual void pressesEnded(RemoteButton /*button*/) {}
  virtual void pressesCancelled(RemoteButton /*button*/) {}
  /// Called after Select was pressed and released on this focused view, and after a tap on it.
  virtual void activate() {}
  /// Moves something inside this focused view, such as a scrolled text. Returns false to let the focus move instead.
  virtual bool handleArrow(RemoteButton /*arrow*/) { return false; }

  /// Returns what was set, with the view's own label where that has none; what the class of view says by default
  /// otherwise.
  AccessibilityInfo accessibility() const;
  /// Replaces the default. A role of None makes a screen reader skip even a label or a button.
  void setAccessibility(AccessibilityInfo info);

 protected:
  Responder();

  /// What a screen reader reads unless something was set.
  virtual AccessibilityInfo defaultAccessibility() const { return {}; }

 private:
  friend class GestureRecognizer;
  friend class WindowInput;

  bool isUserInteractionEnabled_ = true;
  bool isFocused_ = false;
  std::optional<AccessibilityInfo> accessibility_;
  std::vector<std::shared_ptr<GestureRecognizer>> recognizers_;
};

}  // namespace kesu
