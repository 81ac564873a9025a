#pragma once

namespace kesu {

/// A place on the earth, in degrees: north and east are positive.
struct KesuGeoPoint {
  float latitude = 0.0F;
  float longitude = 0.0F;
};

}  // namespace kesu
