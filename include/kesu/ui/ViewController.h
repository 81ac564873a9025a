#pragma once

#include <kesu/Export.h>

#include <string>
#include <utility>

namespace kesu {

/// One screen of the host. Derive from it, and call appear() and disappear() (or let a container or Window do it): the
/// library then records which screens the user saw and for how long; no Window is needed for that. Main thread. Not
/// copyable: its address is its identity.
class KESU_API ViewController {
 public:
  ViewController() = default;
  virtual ~ViewController();

  ViewController(const ViewController&) = delete;
  ViewController& operator=(const ViewController&) = delete;

  /// Makes the screen visible: runs viewDidAppear(), makes the visible child of a container visible, then reports the
  /// screen. Ignored while it is visible.
  void appear(bool animated = false);

  /// Makes the screen invisible: the visible child of a container first, then runs viewDidDisappear() and reports the
  /// screen. Ignored while it is invisible.
  void disappear(bool animated = false);

  bool isVisible() const { return isVisible_; }

  /// Presents another controller over this one, which disappears. Not owned; must stay alive until it is dismissed.
  /// Ignored while this one presents, or when the other is presented elsewhere or lies below this one.
  void present(ViewController& controller, bool animated = false);

  /// Dismisses the controller that this one presents, with all those above: the frontmost disappears and this one
  /// appears.
  void dismissPresented(bool animated = false);

  ViewController* presentedViewController() const { return presented_; }

  /// Returns the last of the controllers presented over this one, or this one.
  ViewController& frontmost();

  /// Returns the name of the class, by which the screen is recorded. Looked up on appearance, as a destructor no longer
  /// sees the derived class.
  const std::string& className();

  const std::string& title() const { return title_; }
  void setTitle(std::string title) { title_ = std::move(title); }

  /// Returns the controller inside this container that the user sees, unless another one is presented over it; null
  /// unless it is a container. It appears and disappears with the container.
  virtual ViewController* visibleChild() { return nullptr; }

 protected:
  virtual void viewDidAppear(bool /*animated*/) {}
  virtual void viewDidDisappear(bool /*animated*/) {}

 private:
  bool isShownOver(const ViewController& other) const;

  std::string className_;
  std::string title_;
  ViewController* presented_ = nullptr;
  ViewController* presenting_ = nullptr;
  bool isVisible_ = false;
};

/// Returns the controller on top of `root`: what it presents, else the visible child of a container, repeatedly. Null
/// for null.
KESU_API ViewController* topViewControllerWithRootViewController(ViewController* root);

}  // namespace kesu
