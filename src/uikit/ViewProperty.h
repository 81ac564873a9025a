#pragma once

#include <kesu/ui/View.h>

namespace kesu {

/// What of a view can be on its way by itself.
enum class ViewProperty { Center, Size, Transform, Alpha, Shadow };

constexpr ViewProperty kViewProperties[] = {ViewProperty::Center, ViewProperty::Size, ViewProperty::Transform,
                                            ViewProperty::Alpha, ViewProperty::Shadow};

/// Whether the property is the same in both.
bool isSame(ViewProperty property, const ViewGeometry& one, const ViewGeometry& other);

/// Sets the property of `geometry` to what lies at `part` of the way, from 0 to 1: exactly the end at 1.
void moveTo(ViewProperty property, const ViewGeometry& from, const ViewGeometry& to, double part,
            ViewGeometry& geometry);

}  // namespace kesu
