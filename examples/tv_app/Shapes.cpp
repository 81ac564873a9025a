#include "Shapes.h"

#include <algorithm>
#include <cmath>

namespace tv {
namespace {

float segmentDistance(float x, float y, float fromX, float fromY, float toX, float toY) {
  const float dx = toX - fromX;
  const float dy = toY - fromY;
  const float along = std::clamp(((x - fromX) * dx + (y - fromY) * dy) / (dx * dx + dy * dy), 0.0F, 1.0F);
  return std::hypot(x - fromX - along * dx, y - fromY - along * dy);
}

float bell(float x, float y) {
  const float dome = std::hypot(x, y + 0.12F) - 0.42F;
  const float skirt = std::max({std::abs(x) - 0.42F - 0.22F * std::max(y, 0.0F), -y - 0.12F, y - 0.42F});
  const float rim = boxDistance(x, y - 0.44F, 0.62F, 0.07F, 0.07F);
  const float knob = std::hypot(x, y + 0.58F) - 0.11F;
  const float clapper = std::max(std::hypot(x, y - 0.6F) - 0.18F, 0.6F - y);
  return std::min({dome, skirt, rim, knob, clapper});
}

float gear(float x, float y) {
  const float radius = std::hypot(x, y);
  const float teeth = std::clamp(std::cos(8.0F * std::atan2(y, x)) * 3.0F, -1.0F, 1.0F);
  return std::max(radius - 0.66F - 0.1F * teeth, 0.27F - radius);
}

float letter(float x, float y) {
  const float paper = boxDistance(x, y, 0.8F, 0.56F, 0.12F);
  const float fold = segmentDistance(std::abs(x), y, 0.0F, 0.1F, 0.8F, -0.5F) - 0.055F;
  return std::max(paper, -fold);
}

float iconDistance(Icon icon, float x, float y) {
  switch (icon) {
    case Icon::Bell:
      return bell(x, y);
    case Icon::Gear:
      return gear(x, y);
    case Icon::Play:
      return std::max(-x - 0.45F, 0.5F * x + 0.866F * std::abs(y) - 0.36F);
    case Icon::Pause:
      return boxDistance(std::abs(x) - 0.3F, y, 0.15F, 0.62F, 0.05F);
    case Icon::Plus:
      return std::min(boxDistance(x, y, 0.62F, 0.09F, 0.05F), boxDistance(x, y, 0.09F, 0.62F, 0.05F));
    case Icon::Check:
      return std::min(segmentDistance(x, y, -0.55F, 0.05F, -0.15F, 0.45F),
                      segmentDistance(x, y, -0.15F, 0.45F, 0.6F, -0.4F)) -
             0.1F;
    case Icon::Letter:
      return letter(x, y);
    case Icon::Back:
      return segmentDistance(x, std::abs(y), -0.3F, 0.0F, 0.25F, 0.55F) - 0.09F;
    case Icon::Forward:
      return iconDistance(Icon::Back, -x, y);
  }
  return 1.0F;
}

}  // namespace

float smoothStep(float from, float to, float x) {
  const float part = std::clamp((x - from) / (to - from), 0.0F, 1.0F);
  return part * part * (3.0F - 2.0F * part);
}

float boxDistance(float x, float y, float halfWidth, float halfHeight, float radius) {
  const float dx = std::abs(x) - halfWidth + radius;
  const float dy = std::abs(y) - halfHeight + radius;
  return std::hypot(std::max(dx, 0.0F), std::max(dy, 0.0F)) + std::min(std::max(dx, dy), 0.0F) - radius;
}

Shape roundedBox(float radius) {
  return [radius](float x, float y, float width, float height) {
    return boxDistance(x - width / 2.0F, y - height / 2.0F, width / 2.0F, height / 2.0F, radius);
  };
}

Shape iconShape(Icon icon) {
  return [icon](float x, float y, float width, float height) {
    return iconDistance(icon, 2.0F * x / width - 1.0F, 2.0F * y / height - 1.0F) * width / 2.0F;
  };
}

Picture paintMask(int width, int height, const Shape& shape, float softness) {
  Picture picture{width, height, {}};
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      const float distance = shape(static_cast<float>(column) + 0.5F, static_cast<float>(row) + 0.5F,
                                   static_cast<float>(width), static_cast<float>(height));
      const float cover =
          softness > 1.0F ? smoothStep(0.0F, -softness, distance) : std::clamp(0.5F - distance, 0.0F, 1.0F);
      picture.pixels.push_back(static_cast<std::uint32_t>(std::lround(cover * 255.0F)) << 24 | 0x00ffffffU);
    }
  }
  return picture;
}

}  // namespace tv
