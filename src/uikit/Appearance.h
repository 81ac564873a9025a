#pragma once

#include <kesu/ui/ViewController.h>

namespace kesu {

/// Called for every screen that appears or disappears. Main thread.
class AppearanceObserver {
 public:
  virtual void didAppear(ViewController& controller) = 0;
  virtual void didDisappear(ViewController& controller) = 0;

 protected:
  ~AppearanceObserver() = default;
};

/// Sets the one appearance observer; null for none. Not owned. Main thread.
void setAppearanceObserver(AppearanceObserver* observer);

/// Makes one screen, or what is presented over it, invisible and another one visible; either may be null. Main thread.
void exchangeScreens(ViewController* before, ViewController* after, bool animated);

}  // namespace kesu
