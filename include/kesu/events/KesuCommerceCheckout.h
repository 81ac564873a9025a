#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// A checkout: started, completed, abandoned or failed.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuCommerceCheckout {
 public:
  KesuCommerceCheckout() = delete;

  /// Posts event "CheckoutStarted": a checkout was started. No keys of its own.
  /// [KesuCommerceCheckout postCheckoutStarted:]
  static void postCheckoutStarted(const Attributes& attributes = {});

  /// Posts event "CheckoutCompleted": a checkout was completed. No keys of its own.
  /// [KesuCommerceCheckout postCheckoutCompleted:]
  static void postCheckoutCompleted(const Attributes& attributes = {});

  /// Posts event "CheckoutAbandoned": a checkout was abandoned. No keys of its own.
  /// [KesuCommerceCheckout postCheckoutAbandoned:]
  static void postCheckoutAbandoned(const Attributes& attributes = {});

  /// Posts event "CheckoutFailed": a checkout failed. No keys of its own. [KesuCommerceCheckout postCheckoutFailed:]
  static void postCheckoutFailed(const Attributes& attributes = {});
};

}  // namespace kesu
