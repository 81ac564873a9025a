#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Purchases inside the application.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuInAppPurchaseRevenue {
 public:
  KesuInAppPurchaseRevenue() = delete;

  /// Posts event "InAppPurchaseListView": the list of prices was viewed. Keys: "appScreenRequestFromId" (object).
  /// [KesuInAppPurchaseRevenue postPriceListViewViewed:withAttributes:]
  static void postPriceListViewViewed(const Object& appScreenRequestFromId, const Attributes& attributes = {});

  /// Posts event "InAppPurchaseBuy": an item was bought. Keys: "item", "revenue", "currencyISO4217Code" (object).
  /// [KesuInAppPurchaseRevenue postBuyItem:price:currency:withAttributes:]
  static void postBuyItem(const Object& item, const Object& price, const Object& currency,
                          const Attributes& attributes = {});

  /// Posts event "InAppPurchaseBuy": an item was bought in US dollars. Keys: "item", "revenue" (object);
  /// "currencyISO4217Code" = "USD". [KesuInAppPurchaseRevenue postBuyItemInUSD:price:withAttributes:]
  static void postBuyItemInUSD(const Object& item, const Object& price, const Attributes& attributes = {});

  /// Posts event "InAppPurchaseBuy": an item was bought, or buying it failed. Keys: "itemName", "revenue",
  /// "currencyISO4217Code", "itemType", "itemSKU", "quantity", "appScreenRequestFromId" (object); "success" (flag);
  /// "successOrErrorCode" (object). [KesuInAppPurchaseRevenue
  /// postBuyItem:price:currency:itemType:itemSKU:quantity:requestId:status:successCode:withAttributes:]
  static void postBuyItem(const Object& itemName, const Object& price, const Object& currency, const Object& itemType,
                          const Object& itemSKU, const Object& quantity, const Object& requestId, bool status,
                          const Object& successCode, const Attributes& attributes = {});
  static void postBuyItem(const Object&, const Object&, const Object&, const Object&, const Object&, const Object&,
                          const Object&, const char*, const Object&, const Attributes& = {}) = delete;
};

}  // namespace kesu
