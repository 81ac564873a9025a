#pragma once

#include <kesu/Export.h>

#include <cstdint>
#include <string>

namespace kesu {

/// Reports that a screen called `name` appeared, for hosts without view controllers. `id` distinguishes screens of one
/// name that are visible at the same time. Main thread. The first screen appears after
/// Application::didFinishLaunching(), which forgets since when earlier ones are visible.
KESU_API void screenAppeared(const std::string& name, std::uint64_t id = 0);

/// Reports that the screen disappeared. Without an appearance before, nothing is measured. Main thread.
KESU_API void screenDisappeared(const std::string& name, std::uint64_t id = 0);

/// Reports a screen as visible during its own lifetime. Scopes may be nested: each has the time during which it was
/// visible, also across the background. Main thread.
class KESU_API ScreenScope {
 public:
  explicit ScreenScope(std::string name);
  ~ScreenScope();

  ScreenScope(const ScreenScope&) = delete;
  ScreenScope& operator=(const ScreenScope&) = delete;

 private:
  std::string name_;
};

}  // namespace kesu
