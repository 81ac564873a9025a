#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// One article: looked at, scanned, shared, rated.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuCommerceItem {
 public:
  KesuCommerceItem() = delete;

  /// [KesuCommerceItem postViewedItem:] Event "ItemView", no keys of its own.
  static void postViewedItem(const Attributes& attributes = {});

  /// [KesuCommerceItem postScannedItem:] Event "ItemScanned", no keys of its own.
  static void postScannedItem(const Attributes& attributes = {});

  /// [KesuCommerceItem postViewedReviews:] Event "ItemViewedReviews", no keys of its own.
  static void postViewedReviews(const Attributes& attributes = {});

  /// [KesuCommerceItem postViewedDetails:] Event "ItemViewedDetails", no keys of its own.
  static void postViewedDetails(const Attributes& attributes = {});

  /// [KesuCommerceItem postViewedPrice:] Event "ItemViewedPrice", no keys of its own.
  static void postViewedPrice(const Attributes& attributes = {});

  /// [KesuCommerceItem postItemShareItem:] Event "ItemShare", no keys of its own.
  static void postItemShareItem(const Attributes& attributes = {});

  /// [KesuCommerceItem postItemRateOn5Scale:withRating:withAttributes:] Event "ItemRate".
  /// Keys: "itemSKU", "rating" (object).
  static void postItemRateOn5Scale(const Object& itemSKU, const Object& rating, const Attributes& attributes = {});
};

}  // namespace kesu
