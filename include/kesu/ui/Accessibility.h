#pragma once

#include <kesu/graphics/Geometry.h>

#include <string>

namespace kesu {

/// What a screen reader reads of a view.
struct AccessibilityInfo {
  enum class Role { None, Dialog, Heading, Text, Image, Button };
  Role role = Role::None;  ///< None: the view itself is skipped, its subviews are not.
  std::string label;
  std::string value;
};

/// One element of the screen for a screen reader.
struct AccessibilityNode {
  AccessibilityInfo::Role role = AccessibilityInfo::Role::None;
  std::string label;
  std::string value;
  Rect frame;  ///< In points of the screen, transforms left out.
  bool isFocused = false;
};

}  // namespace kesu
