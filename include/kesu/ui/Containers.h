#pragma once

#include <kesu/Export.h>
#include <kesu/ui/ViewController.h>

#include <cstddef>
#include <vector>

namespace kesu {

/// A row of screens of which one is selected. Main thread. Does not own its screens, which must outlive it.
class KESU_API TabBarController : public ViewController {
 public:
  ~TabBarController() override;

  /// Sets the screens; the first is selected.
  void setViewControllers(std::vector<ViewController*> controllers);

  /// Selects a screen: the one before disappears, the new one appears, if the container is visible. Others are ignored.
  void setSelectedIndex(std::size_t index, bool animated = false);

  std::size_t selectedIndex() const { return selected_; }
  ViewController* selectedViewController() const;
  ViewController* visibleChild() override { return selectedViewController(); }

 protected:
  void viewDidAppear(bool animated) override;
  void viewDidDisappear(bool animated) override;

 private:
  std::vector<ViewController*> controllers_;
  std::size_t selected_ = 0;
};

/// A stack of screens of which the last is visible. Main thread. Does not own its screens, which must outlive it.
class KESU_API NavigationController : public ViewController {
 public:
  ~NavigationController() override;

  /// Puts a screen on the stack: the one below disappears, the new one appears, if the container is visible.
  void push(ViewController& controller, bool animated = false);

  /// Takes the last screen off the stack, but never the first. Returns it, or null.
  ViewController* pop(bool animated = false);

  /// What is shown over the container, else over its last screen, else that screen, else null.
  ViewController* visibleViewController() const;
  ViewController* visibleChild() override { return visibleViewController(); }

 protected:
  void viewDidAppear(bool animated) override;
  void viewDidDisappear(bool animated) override;

 private:
  ViewController* lastOfStack() const { return stack_.empty() ? nullptr : stack_.back(); }

  std::vector<ViewController*> stack_;
};

/// The window that shows the host's screens. Main thread.
class KESU_API Window {
 public:
  Window() = default;
  ~Window();

  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  /// Names the screen that the window begins with; not owned. The one before disappears, the new one appears, if this
  /// is the key window.
  void setRootViewController(ViewController* root);
  ViewController* rootViewController() const { return root_; }

  /// Makes this the window that the user sees: Application::keyWindow().
  void makeKeyAndVisible();

 private:
  ViewController* root_ = nullptr;
};

}  // namespace kesu
