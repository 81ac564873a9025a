#pragma once

#include <memory>

#include "drawing/Canvas.h"

namespace kesu {

/// What makeCanvas() does; never null.
std::unique_ptr<Canvas> makeCairoCanvas(const CanvasPixels& target);

}  // namespace kesu
