#pragma once

#include <kesu/Export.h>

#include <string>
#include <utility>

namespace kesu {

class ViewController;

/// Told of every screen that appears or disappears. Main thread.
class AppearanceObserver {
 public:
  virtual ~AppearanceObserver() = default;
  virtual void didAppear(ViewController& controller) = 0;
  virtual void didDisappear(ViewController& controller) = 0;
};

/// One screen of the host. Derive from it, and call appear() and disappear() (or let a container or Window do it): the
/// library then knows which screens the user saw and for how long. Main thread. Not copyable: its address is its
/// identity.
class KESU_API ViewController {
 public:
  ViewController() = default;
  virtual ~ViewController();

  ViewController(const ViewController&) = delete;
  ViewController& operator=(const ViewController&) = delete;

  /// The screen is on: runs viewDidAppear(), then tells the library. Nothing happens when it is on already.
  void appear(bool animated = false);

  /// The screen is off: runs viewDidDisappear(), then tells the library. Nothing happens when it is off already.
  void disappear(bool animated = false);

  bool isVisible() const { return isVisible_; }

  /// Shows another controller over this one, which disappears. It must stay alive until it is dismissed. Nothing
  /// happens while one is shown, or when the other one is shown elsewhere or lies below this one.
  void present(ViewController& controller, bool animated = false);

  /// Takes the controller that is shown over this one away, with all that is shown over that: the frontmost one
  /// disappears and this one appears again.
  void dismissPresented(bool animated = false);

  ViewController* presentedViewController() const { return presented_; }

  /// The last of the controllers that are shown over this one, one over the other; this one itself without any.
  ViewController& frontmost();

  /// The name by which the screen is known: its class. Found out when it appears, since a screen that is being
  /// destroyed has lost its class.
  const std::string& className();

  const std::string& title() const { return title_; }
  void setTitle(std::string title) { title_ = std::move(title); }

  /// The controller inside this one that the user really sees; this one itself unless it is a container.
  virtual ViewController* visibleChild() { return nullptr; }

  /// Names who is told of appearances, in place of the one before; null for nobody. Not owned. The library names
  /// itself: a host that calls this takes the screens away from its records.
  static void setAppearanceObserver(AppearanceObserver* observer);

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

/// The controller on top of `root`: containers lead to their visible child, others to what they present. Null for null.
KESU_API ViewController* topViewControllerWithRootViewController(ViewController* root);

}  // namespace kesu
