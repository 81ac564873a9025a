#pragma once

#include <kesu/graphics/Frame.h>

#include <cstdint>
#include <vector>

namespace kesu {

/// What composeLayers() does.
void paintLayers(const std::vector<FrameLayer>& layers, std::uint32_t* pixels, int width, const PixelRect& area);

}  // namespace kesu
