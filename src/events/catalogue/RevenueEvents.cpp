#include <kesu/events/KesuCommerceRevenue.h>
#include <kesu/events/KesuInAppPurchaseRevenue.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {

void KesuCommerceRevenue::postRevenue(const Object&, const Attributes& attributes) {
  EventBuilder("RevenuePost", attributes).post();
}

void KesuCommerceRevenue::postRevenue(const Object& revenue, std::initializer_list<Attributes::Entry> attributes) {
  postRevenue(revenue, Attributes(attributes));
}

void KesuCommerceRevenue::postRevenue(const Object&, const Object&, const Attributes& attributes) {
  EventBuilder("RevenueWithPaymentInstrument", attributes).post();
}

void KesuCommerceRevenue::postRevenueUsingApplePay(const Object& revenue, const Attributes& attributes) {
  postRevenue(revenue, "ApplePay", attributes);
}

void KesuCommerceRevenue::postRevenueUsingSamsungPay(const Object& revenue, const Attributes& attributes) {
  postRevenue(revenue, "SamsungPay", attributes);
}

void KesuCommerceRevenue::postRevenueUsingGooglePay(const Object& revenue, const Attributes& attributes) {
  postRevenue(revenue, "GooglePay", attributes);
}

void KesuInAppPurchaseRevenue::postPriceListViewViewed(const Object& appScreenRequestFromId,
                                                       const Attributes& attributes) {
  EventBuilder("InAppPurchaseListView", attributes).object("appScreenRequestFromId", appScreenRequestFromId).post();
}

void KesuInAppPurchaseRevenue::postBuyItem(const Object& item, const Object& price, const Object& currency,
                                           const Attributes& attributes) {
  EventBuilder("InAppPurchaseBuy", attributes)
      .object("item", item)
      .object("revenue", price)
      .object("currencyISO4217Code", currency)
      .post();
}

void KesuInAppPurchaseRevenue::postBuyItemInUSD(const Object& item, const Object& price, const Attributes& attributes) {
  postBuyItem(item, price, "USD", attributes);
}

// Kept: here the item travels under "itemName", in the short form under "item".
void KesuInAppPurchaseRevenue::postBuyItem(const Object& itemName, const Object& price, const Object& currency,
                                           const Object& itemType, const Object& itemSKU, const Object& quantity,
                                           const Object& requestId, bool status, const Object& successCode,
                                           const Attributes& attributes) {
  EventBuilder("InAppPurchaseBuy", attributes)
      .object("itemName", itemName)
      .object("revenue", price)
      .object("currencyISO4217Code", currency)
      .object("itemType", itemType)
      .object("itemSKU", itemSKU)
      .object("quantity", quantity)
      .object("appScreenRequestFromId", requestId)
      .flag("success", status)
      .object("successOrErrorCode", successCode)
      .post();
}

}  // namespace kesu
