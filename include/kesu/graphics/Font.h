#pragma once

#include <string>

namespace kesu {

/// A typeface and a size in points. A name that is not installed is replaced by the nearest one.
struct Font {
  std::string name;  ///< "HelveticaNeue-Light", "HelveticaNeue-Regular", any installed family; "" is the system font.
  double size = 17.0;

  static Font system(double size) { return {"", size}; }

  friend bool operator==(const Font&, const Font&) = default;
};

/// The alignment of a line of text. Natural: that of its script.
enum class TextAlignment { Natural, Left, Center, Right };

}  // namespace kesu
