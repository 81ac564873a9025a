#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// The shopping cart: what is put in and from where, taken out, shown and shared.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuCommerceCart {
 public:
  KesuCommerceCart() = delete;

  /// Posts event "CartAddedItem": an item was put into the cart. Keys: "cartId", "itemCatefory", "itemId" (object).
  /// [KesuCommerceCart postAddItem:withItemCategory:withItemId:withAttributes:]
  static void postAddItem(const Object& cartId, const Object& itemCategory, const Object& itemId,
                          const Attributes& attributes = {});

  /// Posts event "CartAddItemFromDeals": an item was put into the cart from the deals. Keys: "cartId", "itemCatefory",
  /// "itemId", "uniqueDealId" (object).
  /// [KesuCommerceCart postAddItemFromDeals:withItemCategory:withItemId:withUniqueDealId:withAttributes:]
  static void postAddItemFromDeals(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                   const Object& uniqueDealId, const Attributes& attributes = {});

  /// Posts event "CartAddItemFromWishList": an item was put into the cart from a wish list. Keys: "cartId",
  /// "itemCatefory", "itemId", "uniqueWishListId" (object).
  /// [KesuCommerceCart postAddItemFromWishList:withItemCategory:withItemId:withUniqueWishListId:withAttributes:]
  static void postAddItemFromWishList(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                      const Object& uniqueWishListId, const Attributes& attributes = {});

  /// Posts event "CartAddItemFromCuratedList": an item was put into the cart from a curated list. Keys: "cartId",
  /// "itemCatefory", "itemId", "uniqueCuratedListId" (object).
  /// [KesuCommerceCart postAddItemFromCuratedList:withItemCategory:withItemId:withUniqueCuratedListId:withAttributes:]
  static void postAddItemFromCuratedList(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                         const Object& uniqueCuratedListId, const Attributes& attributes = {});

  /// Posts event "CartAddItemFromRecommendations": an item was put into the cart from the recommendations. Keys:
  /// "cartId", "itemCatefory", "itemId", "uniqueRecommendationId" (object). [KesuCommerceCart
  /// postAddItemFromRecommendations:withItemCategory:withItemId:withUniqueRecommendationId:withAttributes:]
  static void postAddItemFromRecommendations(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                             const Object& uniqueRecommendationId, const Attributes& attributes = {});

  /// Posts event "CartAddItemFromPrevOrders": an item was put into the cart from an earlier order. Keys: "cartId",
  /// "itemCatefory", "itemId", "previousOrderId" (object).
  /// [KesuCommerceCart postAddItemFromPreviousOrders:withItemCategory:withItemId:withPreviousOrderId:withAttributes:]
  static void postAddItemFromPreviousOrders(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                            const Object& previousOrderId, const Attributes& attributes = {});

  /// Posts event "CartAddItemFromSearchResults": an item was put into the cart from the results of a search. Keys:
  /// "cartId", "itemCatefory", "itemId", "searchString" (object).
  /// [KesuCommerceCart postAddItemFromSearchResults:withItemCategory:withItemId:withSearchString:withAttributes:]
  static void postAddItemFromSearchResults(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                           const Object& searchString, const Attributes& attributes = {});

  /// Posts event "CartAddItemFromSubs": an item was put into the cart from a subscription. Keys: "cartId",
  /// "itemCatefory", "itemId", "uniqueDealId" (object).
  /// [KesuCommerceCart postAddItemFromSubscriptionList:withItemCategory:withItemId:withUniqueDealId:withAttributes:]
  static void postAddItemFromSubscriptionList(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                              const Object& uniqueDealId, const Attributes& attributes = {});

  /// Posts event "CartRemoveItem": an item was removed from the cart. Keys: "cartId", "itemCatefory", "itemId"
  /// (object). [KesuCommerceCart postRemoveItemFromCart:withItemCategory:withItemId:withAttributes:]
  static void postRemoveItemFromCart(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                     const Attributes& attributes = {});

  /// Posts event "CartView": the cart was viewed. Keys: "cartId" (object). [KesuCommerceCart postView:withAttributes:]
  static void postView(const Object& cartId, const Attributes& attributes = {});

  /// Posts event "CartShare": an item of the cart was shared. Keys: "cartId", "sharedWith", "itemId" (object).
  /// [KesuCommerceCart postShare:withItemSharedWith:withItemId:withAttributes:]
  static void postShare(const Object& cartId, const Object& itemSharedWith, const Object& itemId,
                        const Attributes& attributes = {});
};

}  // namespace kesu
