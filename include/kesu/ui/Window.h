#pragma once

#include <kesu/Export.h>
#include <kesu/ui/View.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace kesu {

class ViewController;
class WindowInput;

/// The window of the host's screens and the library's popup, 1920 x 1080 points. Main thread.
///
/// Owns the views in it; not owned itself. Destroying the key window leaves none, closes a popup in it, and lets
/// messages be shown again. It may be destroyed in what a press, a swipe or a tap leads to.
class KESU_API Window : public View {
 public:
  Window();
  ~Window() override;

  /// Replaces the first screen of the window; not owned. The former one disappears and the new one appears if this is
  /// the key window.
  void setRootViewController(ViewController* root);
  ViewController* rootViewController() const { return root_; }

  /// Makes this the window that the user sees: Application::keyWindow().
  void makeKeyAndVisible();

  /// Returns the view that presses go to, or null. It lies in the frontmost modal view, is visible, has a size, and
  /// takes part in interaction.
  View* focusedView() const;

  /// Focuses a view; null selects the first one in reading order. Ignores views that cannot be focused.
  void setFocusedView(View* view);

 private:
  friend class ViewDrawing;
  friend class WindowInput;

  ViewController* root_ = nullptr;
  std::uint64_t changeCount_ = 0;
  std::function<void()> changeCallback_;
  std::shared_ptr<WindowInput> input_;
};

}  // namespace kesu
