#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// How a checkout went.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuCommerceCheckout {
 public:
  KesuCommerceCheckout() = delete;

  /// [KesuCommerceCheckout postCheckoutStarted:] Event "CheckoutStarted", no keys of its own.
  static void postCheckoutStarted(const Attributes& attributes = {});

  /// [KesuCommerceCheckout postCheckoutCompleted:] Event "CheckoutCompleted", no keys of its own.
  static void postCheckoutCompleted(const Attributes& attributes = {});

  /// [KesuCommerceCheckout postCheckoutAbandoned:] Event "CheckoutAbandoned", no keys of its own.
  static void postCheckoutAbandoned(const Attributes& attributes = {});

  /// [KesuCommerceCheckout postCheckoutFailed:] Event "CheckoutFailed", no keys of its own.
  static void postCheckoutFailed(const Attributes& attributes = {});
};

}  // namespace kesu
