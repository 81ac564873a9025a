#pragma once

#include <kesu/graphics/Geometry.h>
#include <kesu/ui/Remote.h>

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

namespace kesu {

/// The targets of the four arrows from one item, indexed by RemoteButton::Up to Right; nothing where the focus stays.
using FocusMoves = std::array<std::optional<std::size_t>, 4>;

/// Returns where the arrows lead between items with these frames: to the nearest item straight ahead, else to one less
/// than 45 degrees aside. Where that leaves an item that cannot be reached from another one, arrows without a target,
/// then others, lead further aside: every item is reachable from every other, whatever the frames. An arrow never leads
/// to an item whose centre lies behind.
std::vector<FocusMoves> focusGraph(const std::vector<Rect>& frames);

/// Returns the items in reading order: rows from the top, each from the left.
std::vector<std::size_t> readingOrder(const std::vector<Rect>& frames);

/// Returns the item that replaces one at `place`: the nearer of its two neighbours in reading order. Nothing without
/// items.
std::optional<std::size_t> nearestInReadingOrder(const std::vector<Rect>& frames, const Rect& place);

}  // namespace kesu
