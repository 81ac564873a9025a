#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// The payment step of a checkout: started, completed, abandoned or failed.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuCommercePayment {
 public:
  KesuCommercePayment() = delete;

  /// Posts event "PaymentStarted": the payment step was started. No keys of its own.
  /// [KesuCommercePayment postPaymentStarted:]
  static void postPaymentStarted(const Attributes& attributes = {});

  /// Posts event "PaymentCompleted": the payment step was completed. No keys of its own.
  /// [KesuCommercePayment postPaymentCompleted:]
  static void postPaymentCompleted(const Attributes& attributes = {});

  /// Posts event "PaymentAbandoned": the payment step was abandoned. No keys of its own.
  /// [KesuCommercePayment postPaymentAbandoned:]
  static void postPaymentAbandoned(const Attributes& attributes = {});

  /// Posts event "PaymentFailed": the payment step failed. No keys of its own. [KesuCommercePayment postPaymentFailed:]
  static void postPaymentFailed(const Attributes& attributes = {});
};

}  // namespace kesu
