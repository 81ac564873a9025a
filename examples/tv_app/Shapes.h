#pragma once

#include <functional>

#include "Artwork.h"

namespace tv {

/// A form by its distance function: how far a point of a picture of that size lies outside of it (negative: inside),
/// all in pixels.
using Shape = std::function<float(float x, float y, float width, float height)>;

/// The signs that the screens show.
enum class Icon { Bell, Gear, Play, Pause, Plus, Check, Letter, Back, Forward };

/// 0 up to `from`, 1 from `to` on (or the other way round when `to` is smaller), smooth in between.
float smoothStep(float from, float to, float x);

/// The distance to a box around the origin with these half sides and rounded corners.
float boxDistance(float x, float y, float halfWidth, float halfHeight, float radius);

/// A box that fills the picture.
Shape roundedBox(float radius);

/// A sign that fills the picture, which is to be square.
Shape iconShape(Icon icon);

/// White where the shape is and transparent elsewhere. `softness` is the width of the edge in pixels, inwards.
Picture paintMask(int width, int height, const Shape& shape, float softness = 1.0F);

}  // namespace tv
