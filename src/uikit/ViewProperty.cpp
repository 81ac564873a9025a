#include "uikit/ViewProperty.h"

namespace kesu {
namespace {

double mix(double from, double to, double part) {
  return part >= 1.0 ? to : from + (to - from) * part;  // The sum may miss `to` by a rounding error.
}

Color mix(const Color& from, const Color& to, double part) {
  return {mix(from.red, to.red, part), mix(from.green, to.green, part), mix(from.blue, to.blue, part),
          mix(from.alpha, to.alpha, part)};
}

Size mix(const Size& from, const Size& to, double part) {
  return {mix(from.width, to.width, part), mix(from.height, to.height, part)};
}

Transform mix(const Transform& from, const Transform& to, double part) {
  return {mix(from.scaleX, to.scaleX, part), mix(from.scaleY, to.scaleY, part), mix(from.moveX, to.moveX, part),
          mix(from.moveY, to.moveY, part)};
}

Shadow mix(const Shadow& from, const Shadow& to, double part) {
  return {mix(from.color, to.color, part), mix(from.opacity, to.opacity, part), mix(from.radius, to.radius, part),
          mix(from.offset, to.offset, part)};
}

}  // namespace

bool isSame(ViewProperty property, const ViewGeometry& one, const ViewGeometry& other) {
  switch (property) {
    case ViewProperty::Center:
      return one.center == other.center;
    case ViewProperty::Size:
      return one.size == other.size;
    case ViewProperty::Transform:
      return one.transform == other.transform;
    case ViewProperty::Alpha:
      return one.alpha == other.alpha;
    case ViewProperty::Shadow:
      return one.shadow == other.shadow;
  }
  return true;
}

void moveTo(ViewProperty property, const ViewGeometry& from, const ViewGeometry& to, double part,
            ViewGeometry& geometry) {
  switch (property) {
    case ViewProperty::Center:
      geometry.center = {mix(from.center.x, to.center.x, part), mix(from.center.y, to.center.y, part)};
      break;
    case ViewProperty::Size:
      geometry.size = mix(from.size, to.size, part);
      break;
    case ViewProperty::Transform:
      geometry.transform = mix(from.transform, to.transform, part);
      break;
    case ViewProperty::Alpha:
      geometry.alpha = mix(from.alpha, to.alpha, part);
      break;
    case ViewProperty::Shadow:
      geometry.shadow = mix(from.shadow, to.shadow, part);
      break;
  }
}

}  // namespace kesu
