#pragma once

#include <kesu/Export.h>

#include <cstdint>
#include <string>

namespace kesu {

/// For hosts with screens of their own: reports that a screen called `name` appeared. `id` tells apart two screens of
/// one name that are visible at the same time. Main thread.
KESU_API void screenAppeared(const std::string& name, std::uint64_t id = 0);

/// Reports that it disappeared. Without an appearance before, nothing is measured.
KESU_API void screenDisappeared(const std::string& name, std::uint64_t id = 0);

/// A screen that is visible for as long as this lives. Main thread.
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
