#pragma once

#include <string>

namespace kesu {

/// A typeface and a size in points. Names that are not installed are replaced by the nearest one that is.
struct Font {
  std::string name;  ///< "HelveticaNeue-Light", "HelveticaNeue-Regular", any installed family; "" is the system font.
  double size = 17.0;

  static Font system(double size) { return {"", size}; }

  friend bool operator==(const Font&, const Font&) = default;
};

/// Where a line of text lies between the edges. Natural: where its script begins.
enum class TextAlignment { Natural, Left, Center, Right };

}  // namespace kesu
