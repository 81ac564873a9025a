#include <kesu/ui/Responder.h>

#include <utility>

namespace kesu {

Responder::Responder() = default;

Responder::~Responder() = default;

AccessibilityInfo Responder::accessibility() const {
  if (!accessibility_) {
    return defaultAccessibility();
  }
  AccessibilityInfo info = *accessibility_;
  if (info.label.empty()) {
    info.label = defaultAccessibility().label;
  }
  return info;
}

void Responder::setAccessibility(AccessibilityInfo info) {
  accessibility_ = std::move(info);
}

}  // namespace kesu
