#include <kesu/events/KesuCommerceCart.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {
namespace {

EventBuilder cartEvent(std::string_view event, const Object& cartId, const Object& itemCategory, const Object& itemId,
                       const Attributes& attributes) {
  return EventBuilder(event, attributes)
      .object("cartId", cartId)
      .object("itemCatefory", itemCategory)
      .object("itemId", itemId);
}

}  // namespace

void KesuCommerceCart::postAddItem(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                   const Attributes& attributes) {
  cartEvent("CartAddedItem", cartId, itemCategory, itemId, attributes).post();
}

void KesuCommerceCart::postAddItemFromDeals(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                            const Object& uniqueDealId, const Attributes& attributes) {
  cartEvent("CartAddItemFromDeals", cartId, itemCategory, itemId, attributes)
      .object("uniqueDealId", uniqueDealId)
      .post();
}

void KesuCommerceCart::postAddItemFromWishList(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                               const Object& uniqueWishListId, const Attributes& attributes) {
  cartEvent("CartAddItemFromWishList", cartId, itemCategory, itemId, attributes)
      .object("uniqueWishListId", uniqueWishListId)
      .post();
}

void KesuCommerceCart::postAddItemFromCuratedList(const Object& cartId, const Object& itemCategory,
                                                  const Object& itemId, const Object& uniqueCuratedListId,
                                                  const Attributes& attributes) {
  cartEvent("CartAddItemFromCuratedList", cartId, itemCategory, itemId, attributes)
      .object("uniqueCuratedListId", uniqueCuratedListId)
      .post();
}

void KesuCommerceCart::postAddItemFromRecommendations(const Object& cartId, const Object& itemCategory,
                                                      const Object& itemId, const Object& uniqueRecommendationId,
                                                      const Attributes& attributes) {
  cartEvent("CartAddItemFromRecommendations", cartId, itemCategory, itemId, attributes)
      .object("uniqueRecommendationId", uniqueRecommendationId)
      .post();
}

void KesuCommerceCart::postAddItemFromPreviousOrders(const Object& cartId, const Object& itemCategory,
                                                     const Object& itemId, const Object& previousOrderId,
                                                     const Attributes& attributes) {
  cartEvent("CartAddItemFromPrevOrders", cartId, itemCategory, itemId, attributes)
      .object("previousOrderId", previousOrderId)
      .post();
}

void KesuCommerceCart::postAddItemFromSearchResults(const Object& cartId, const Object& itemCategory,
                                                    const Object& itemId, const Object& searchString,
                                                    const Attributes& attributes) {
  cartEvent("CartAddItemFromSearchResults", cartId, itemCategory, itemId, attributes)
      .object("searchString", searchString)
      .post();
}

void KesuCommerceCart::postAddItemFromSubscriptionList(const Object& cartId, const Object& itemCategory,
                                                       const Object& itemId, const Object& uniqueDealId,
                                                       const Attributes& attributes) {
  cartEvent("CartAddItemFromSubs", cartId, itemCategory, itemId, attributes)
      .object("uniqueDealId", uniqueDealId)
      .post();
}

void KesuCommerceCart::postRemoveItemFromCart(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                              const Attributes& attributes) {
  cartEvent("CartRemoveItem", cartId, itemCategory, itemId, attributes).post();
}

void KesuCommerceCart::postView(const Object& cartId, const Attributes& attributes) {
  EventBuilder("CartView", attributes).object("cartId", cartId).post();
}

void KesuCommerceCart::postShare(const Object& cartId, const Object& itemSharedWith, const Object& itemId,
                                 const Attributes& attributes) {
  EventBuilder("CartShare", attributes)
      .object("cartId", cartId)
      .object("sharedWith", itemSharedWith)
      .object("itemId", itemId)
      .post();
}

}  // namespace kesu
