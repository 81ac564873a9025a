#include "message_ui/SensibleOptions.h"

#include <algorithm>
#include <cmath>

namespace kesu {
namespace {

constexpr double kLargestInset = 400.0;     // Two of these leave 280 of 1080 points: bars and some lines of text.
constexpr double kSmallestTextScale = 0.5;  // A text of 12 points: less cannot be read from a sofa.
constexpr double kLargestTextScale = 3.0;   // Some 15 letters in a line of text.

void clampInset(double& inset) {
  inset = inset > 0.0 ? std::min(inset, kLargestInset) : 0.0;
}

}  // namespace

KesuInAppOptions sensibleOptions(KesuInAppOptions options) {
  clampInset(options.screenInsets.top);
  clampInset(options.screenInsets.left);
  clampInset(options.screenInsets.bottom);
  clampInset(options.screenInsets.right);
  options.textScale =
      std::isfinite(options.textScale) ? std::clamp(options.textScale, kSmallestTextScale, kLargestTextScale) : 1.0;
  return options;
}

}  // namespace kesu
