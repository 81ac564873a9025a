#pragma once

#include <kesu/ui/View.h>

namespace kesu {

/// The properties of a view that are animated independently.
enum class ViewProperty { Center, Size, Transform, Alpha, Shadow };

constexpr ViewProperty kViewProperties[] = {ViewProperty::Center, ViewProperty::Size, ViewProperty::Transform,
                                            ViewProperty::Alpha, ViewProperty::Shadow};

/// Whether the property is the same in both.
bool isSame(ViewProperty property, const ViewGeometry& one, const ViewGeometry& other);

/// Interpolates the property of `geometry`: `part` is 0 at `from` and 1 at exactly `to`.
void moveTo(ViewProperty property, const ViewGeometry& from, const ViewGeometry& to, double part,
            ViewGeometry& geometry);

}  // namespace kesu
