#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// How the shipping step went.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuCommerceShipping {
 public:
  KesuCommerceShipping() = delete;

  /// [KesuCommerceShipping postShippingStarted:] Event "ShippingStarted", no keys of its own.
  static void postShippingStarted(const Attributes& attributes = {});

  /// [KesuCommerceShipping postShippingCompleted:] Event "ShippingCompleted", no keys of its own.
  static void postShippingCompleted(const Attributes& attributes = {});

  /// [KesuCommerceShipping postShippingAbandoned:] Event "ShippingAbandoned", no keys of its own.
  static void postShippingAbandoned(const Attributes& attributes = {});

  /// [KesuCommerceShipping postShippingFailed:] Event "ShippingFailed", no keys of its own.
  static void postShippingFailed(const Attributes& attributes = {});
};

}  // namespace kesu
