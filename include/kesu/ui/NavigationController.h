#pragma once

#include <kesu/Export.h>
#include <kesu/ui/ViewController.h>

#include <vector>

namespace kesu {

/// A stack of screens of which the last is visible. Main thread. Its screens are not owned and must outlive it.
class KESU_API NavigationController : public ViewController {
 public:
  ~NavigationController() override;

  /// Pushes a screen: the one below disappears and the new one appears if the container is visible.
  void push(ViewController& controller, bool animated = false);

  /// Removes the last screen, but never the first. Returns it, or null.
  ViewController* pop(bool animated = false);

  /// Returns what is presented over the container, else over its last screen, else that screen, else null.
  ViewController* visibleViewController() const;
  ViewController* visibleChild() override { return lastOfStack(); }

 private:
  ViewController* lastOfStack() const { return stack_.empty() ? nullptr : stack_.back(); }

  std::vector<ViewController*> stack_;
};

}  // namespace kesu
