#pragma once

#include <kesu/Export.h>
#include <kesu/ui/ViewController.h>

#include <cstddef>
#include <vector>

namespace kesu {

/// A row of screens of which one is selected. Main thread. Its screens are not owned and must outlive it.
class KESU_API TabBarController : public ViewController {
 public:
  ~TabBarController() override;

  /// Replaces the screens and selects the first.
  void setViewControllers(std::vector<ViewController*> controllers);

  /// Selects a screen: the former one disappears and the new one appears if the container is visible. Ignores an index
  /// without a screen.
  void setSelectedIndex(std::size_t index, bool animated = false);

  std::size_t selectedIndex() const { return selected_; }
  ViewController* selectedViewController() const;
  ViewController* visibleChild() override { return selectedViewController(); }

 private:
  std::vector<ViewController*> controllers_;
  std::size_t selected_ = 0;
};

}  // namespace kesu
