#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// How the payment step went.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuCommercePayment {
 public:
  KesuCommercePayment() = delete;

  /// [KesuCommercePayment postPaymentStarted:] Event "PaymentStarted", no keys of its own.
  static void postPaymentStarted(const Attributes& attributes = {});

  /// [KesuCommercePayment postPaymentCompleted:] Event "PaymentCompleted", no keys of its own.
  static void postPaymentCompleted(const Attributes& attributes = {});

  /// [KesuCommercePayment postPaymentAbandoned:] Event "PaymentAbandoned", no keys of its own.
  static void postPaymentAbandoned(const Attributes& attributes = {});

  /// [KesuCommercePayment postPaymentFailed:] Event "PaymentFailed", no keys of its own.
  static void postPaymentFailed(const Attributes& attributes = {});
};

}  // namespace kesu
