#include "message_ui/SensibleOptions.h"

#include <algorithm>
#include <cmath>

namespace kesu {
namespace {

constexpr double kLargestInset = 400.0;
constexpr double kSmallestTextScale = 0.5;
constexpr double kLargestTextScale = 3.0;

void limit(double& inset) {
  inset = inset > 0.0 ? std::min(inset, kLargestInset) : 0.0;
}

}  // namespace

KesuInAppOptions sensibleOptions(KesuInAppOptions options) {
  limit(options.screenInsets.top);
  limit(options.screenInsets.left);
  limit(options.screenInsets.bottom);
  limit(options.screenInsets.right);
  options.textScale =
      std::isfinite(options.textScale) ? std::clamp(options.textScale, kSmallestTextScale, kLargestTextScale) : 1.0;
  return options;
}

}  // namespace kesu
