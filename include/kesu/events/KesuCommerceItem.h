#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// One article: looked at, scanned, shared, rated.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuCommerceItem {
 public:
  KesuCommerceItem() = delete;

  /// Posts event "ItemView": an item was viewed. No keys of its own. [KesuCommerceItem postViewedItem:]
  static void postViewedItem(const Attributes& attributes = {});

  /// Posts event "ItemScanned": an item was scanned. No keys of its own. [KesuCommerceItem postScannedItem:]
  static void postScannedItem(const Attributes& attributes = {});

  /// Posts event "ItemViewedReviews": the reviews of an item were viewed. No keys of its own.
  /// [KesuCommerceItem postViewedReviews:]
  static void postViewedReviews(const Attributes& attributes = {});

  /// Posts event "ItemViewedDetails": the details of an item were viewed. No keys of its own.
  /// [KesuCommerceItem postViewedDetails:]
  static void postViewedDetails(const Attributes& attributes = {});

  /// Posts event "ItemViewedPrice": the price of an item was viewed. No keys of its own.
  /// [KesuCommerceItem postViewedPrice:]
  static void postViewedPrice(const Attributes& attributes = {});

  /// Posts event "ItemShare": an item was shared. No keys of its own. [KesuCommerceItem postItemShareItem:]
  static void postItemShareItem(const Attributes& attributes = {});

  /// Posts event "ItemRate": an item was rated. Keys: "itemSKU", "rating" (object).
  /// [KesuCommerceItem postItemRateOn5Scale:withRating:withAttributes:]
  static void postItemRateOn5Scale(const Object& itemSKU, const Object& rating, const Attributes& attributes = {});
};

}  // namespace kesu
