#pragma once

#include <kesu/graphics/Geometry.h>
#include <kesu/ui/Remote.h>

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

namespace kesu {

/// Where the four arrows lead from one item: indexed by RemoteButton::Up to Right; nothing where the focus stays.
using FocusMoves = std::array<std::optional<std::size_t>, 4>;

/// Where the arrows lead between items with these frames. What lies straight ahead comes first, the nearer the better;
/// else what lies less than 45 degrees aside. Where that would leave an item that cannot be reached from another one,
/// arrows that led nowhere, then others, lead further aside: every item is reachable from every other, whatever the
/// frames. An arrow never leads to an item whose centre lies behind.
std::vector<FocusMoves> focusGraph(const std::vector<Rect>& frames);

/// The items as they are read: rows from the top, each from the left.
std::vector<std::size_t> readingOrder(const std::vector<Rect>& frames);

/// The item that takes over from one that was at `place`: its neighbour in reading order, the nearer of the two.
/// Nothing without items.
std::optional<std::size_t> nearestInReadingOrder(const std::vector<Rect>& frames, const Rect& place);

}  // namespace kesu
