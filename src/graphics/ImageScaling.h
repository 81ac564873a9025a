#pragma once

#include <kesu/graphics/Image.h>

namespace kesu {

/// The picture stretched to this size in pixels, smoothly both ways; the proportions are the caller's business. Null
/// for a width or height that is not positive or over what a decoded picture may have (ImageLimits), and when there is
/// no memory for it. Any thread; about 10 ms for a picture as large as the screen.
ImagePtr scaledImage(const Image& image, int width, int height);

}  // namespace kesu
