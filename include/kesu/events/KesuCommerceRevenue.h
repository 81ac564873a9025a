#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <initializer_list>

namespace kesu {

/// Revenue, reported without its amount.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuCommerceRevenue {
 public:
  KesuCommerceRevenue() = delete;

  /// Posts event "RevenuePost": revenue was earned. No keys of its own. Kept: the amount is not recorded; hosts that
  /// want it put it into the attributes. [KesuCommerceRevenue postRevenue:withAttributes:]
  static void postRevenue(const Object& revenue, const Attributes& attributes = {});

  /// Does the same with attributes in braces, also empty ones, which would fit both forms otherwise.
  static void postRevenue(const Object& revenue, std::initializer_list<Attributes::Entry> attributes);

  /// Posts event "RevenueWithPaymentInstrument": revenue was earned through a payment instrument. No keys of its own.
  /// Kept: neither the amount nor the instrument is recorded.
  /// [KesuCommerceRevenue postRevenue:withPaymentInstrument:withAttributes:]
  static void postRevenue(const Object& revenue, const Object& paymentInstrument, const Attributes& attributes = {});

  /// Posts event "RevenueWithPaymentInstrument": revenue was earned through "ApplePay". No keys of its own.
  /// [KesuCommerceRevenue postRevenueUsingApplePay:withAttributes:]
  static void postRevenueUsingApplePay(const Object& revenue, const Attributes& attributes = {});

  /// Posts event "RevenueWithPaymentInstrument": revenue was earned through "SamsungPay". No keys of its own.
  /// [KesuCommerceRevenue postRevenueUsingSamsungPay:withAttributes:]
  static void postRevenueUsingSamsungPay(const Object& revenue, const Attributes& attributes = {});

  /// Posts event "RevenueWithPaymentInstrument": revenue was earned through "GooglePay". No keys of its own.
  /// [KesuCommerceRevenue postRevenueUsingGooglePay:withAttributes:]
  static void postRevenueUsingGooglePay(const Object& revenue, const Attributes& attributes = {});
};

}  // namespace kesu
