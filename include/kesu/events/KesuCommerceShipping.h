#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// The shipping step of a checkout: started, completed, abandoned or failed.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuCommerceShipping {
 public:
  KesuCommerceShipping() = delete;

  /// Posts event "ShippingStarted": the shipping step was started. No keys of its own.
  /// [KesuCommerceShipping postShippingStarted:]
  static void postShippingStarted(const Attributes& attributes = {});

  /// Posts event "ShippingCompleted": the shipping step was completed. No keys of its own.
  /// [KesuCommerceShipping postShippingCompleted:]
  static void postShippingCompleted(const Attributes& attributes = {});

  /// Posts event "ShippingAbandoned": the shipping step was abandoned. No keys of its own.
  /// [KesuCommerceShipping postShippingAbandoned:]
  static void postShippingAbandoned(const Attributes& attributes = {});

  /// Posts event "ShippingFailed": the shipping step failed. No keys of its own.
  /// [KesuCommerceShipping postShippingFailed:]
  static void postShippingFailed(const Attributes& attributes = {});
};

}  // namespace kesu
