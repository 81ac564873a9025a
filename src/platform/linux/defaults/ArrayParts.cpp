#include "platform/linux/defaults/ArrayParts.h"

#include <algorithm>
#include <span>
#include <utility>

#include "foundation/PropertyList.h"
#include "platform/linux/defaults/DefaultsSchema.h"

namespace kesu {
namespace {

// A shorter array is one row: there is little to save, and it is read in one step.
constexpr std::size_t kShortestInParts = 4 * kPartElements;

std::span<const Value> part(const Array& array, std::size_t place) {
  const std::size_t begin = std::min(place * kPartElements, array.size());
  return {array.data() + begin, std::min(kPartElements, array.size() - begin)};
}

}  // namespace

bool isLongArray(const Value& value) {
  return value.array() != nullptr && value.array()->size() >= kShortestInParts;
}

std::size_t partCount(const Array& array) {
  return (array.size() + kPartElements - 1) / kPartElements;
}

std::optional<ArrayParts> changedParts(const Array& array, const Array* former) {
  ArrayParts parts;
  for (std::size_t place = 0; place < partCount(array); ++place) {
    const std::span<const Value> elements = part(array, place);
    if (former != nullptr && std::ranges::equal(elements, part(*former, place))) {
      continue;
    }
    std::optional<std::string> list =
        writePropertyList(Value(Array(elements.begin(), elements.end())), PropertyListForm::Escaped);
    if (!list) {
      return std::nullopt;
    }
    parts.emplace_hint(parts.end(), place, std::move(*list));
  }
  return parts;
}

}  // namespace kesu
