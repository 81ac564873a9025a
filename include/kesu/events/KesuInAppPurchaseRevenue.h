#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Purchases inside the application.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuInAppPurchaseRevenue {
 public:
  KesuInAppPurchaseRevenue() = delete;

  /// [KesuInAppPurchaseRevenue postPriceListViewViewed:withAttributes:] Event "InAppPurchaseListView".
  /// Keys: "appScreenRequestFromId" (object).
  static void postPriceListViewViewed(const Object& appScreenRequestFromId, const Attributes& attributes = {});

  /// [KesuInAppPurchaseRevenue postBuyItem:price:currency:withAttributes:] Event "InAppPurchaseBuy".
  /// Keys: "item", "revenue", "currencyISO4217Code" (object).
  static void postBuyItem(const Object& item, const Object& price, const Object& currency,
                          const Attributes& attributes = {});

  /// [KesuInAppPurchaseRevenue postBuyItemInUSD:price:withAttributes:] Event "InAppPurchaseBuy".
  /// Keys: "item", "revenue" (object); "currencyISO4217Code" = "USD".
  static void postBuyItemInUSD(const Object& item, const Object& price, const Attributes& attributes = {});

  /// [KesuInAppPurchaseRevenue
  /// postBuyItem:price:currency:itemType:itemSKU:quantity:requestId:status:successCode:withAttributes:]
  /// Event "InAppPurchaseBuy". Keys: "itemName", "revenue", "currencyISO4217Code", "itemType", "itemSKU", "quantity",
  /// "appScreenRequestFromId" (object); "success" (flag); "successOrErrorCode" (object). A text does not pass for a
  /// flag.
  static void postBuyItem(const Object& itemName, const Object& price, const Object& currency, const Object& itemType,
                          const Object& itemSKU, const Object& quantity, const Object& requestId, bool status,
                          const Object& successCode, const Attributes& attributes = {});
  static void postBuyItem(const Object&, const Object&, const Object&, const Object&, const Object&, const Object&,
                          const Object&, const char*, const Object&, const Attributes& = {}) = delete;
};

}  // namespace kesu
