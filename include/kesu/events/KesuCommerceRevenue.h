#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <initializer_list>

namespace kesu {

/// Revenue, told without its amount.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuCommerceRevenue {
 public:
  KesuCommerceRevenue() = delete;

  /// [KesuCommerceRevenue postRevenue:withAttributes:] Event "RevenuePost".
  /// No keys. Kept: the amount is not recorded; hosts that want it put it into the attributes.
  static void postRevenue(const Object& revenue, const Attributes& attributes = {});

  /// The same with attributes in braces, empty ones too, which would fit either form.
  static void postRevenue(const Object& revenue, std::initializer_list<Attributes::Entry> attributes);

  /// [KesuCommerceRevenue postRevenue:withPaymentInstrument:withAttributes:] Event "RevenueWithPaymentInstrument".
  /// No keys. Kept: neither the amount nor the instrument is recorded.
  static void postRevenue(const Object& revenue, const Object& paymentInstrument, const Attributes& attributes = {});

  /// [KesuCommerceRevenue postRevenueUsingApplePay:withAttributes:] Event "RevenueWithPaymentInstrument".
  /// No keys: the event of an instrument, "ApplePay".
  static void postRevenueUsingApplePay(const Object& revenue, const Attributes& attributes = {});

  /// [KesuCommerceRevenue postRevenueUsingSamsungPay:withAttributes:] Event "RevenueWithPaymentInstrument".
  /// No keys: the event of an instrument, "SamsungPay".
  static void postRevenueUsingSamsungPay(const Object& revenue, const Attributes& attributes = {});

  /// [KesuCommerceRevenue postRevenueUsingGooglePay:withAttributes:] Event "RevenueWithPaymentInstrument".
  /// No keys: the event of an instrument, "GooglePay".
  static void postRevenueUsingGooglePay(const Object& revenue, const Attributes& attributes = {});
};

}  // namespace kesu
