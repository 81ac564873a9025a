#pragma once

#include <kesu/graphics/Image.h>

namespace kesu {

/// Returns the picture scaled to this size in pixels, filtered; proportions are not kept. Null
/// for a width or height that is not positive or over what a decoded picture may have (ImageLimits), and when there is
/// no memory for it. Any thread; about 10 ms for a picture as large as the screen.
ImagePtr scaledImage(const Image& image, int width, int height);

}  // namespace kesu
