#pragma once

#include <kesu/graphics/Image.h>

namespace kesu {

/// What scaledImage() does.
ImagePtr scalePicture(const Image& image, int width, int height);

}  // namespace kesu
