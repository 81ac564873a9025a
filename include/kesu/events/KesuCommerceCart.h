#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// The shopping cart: what is put in and from where, taken out, shown and shared.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuCommerceCart {
 public:
  KesuCommerceCart() = delete;

  /// [KesuCommerceCart postAddItem:withItemCategory:withItemId:withAttributes:] Event "CartAddedItem".
  /// Keys: "cartId", "itemCatefory", "itemId" (object).
  static void postAddItem(const Object& cartId, const Object& itemCategory, const Object& itemId,
                          const Attributes& attributes = {});

  /// [KesuCommerceCart postAddItemFromDeals:withItemCategory:withItemId:withUniqueDealId:withAttributes:]
  /// Event "CartAddItemFromDeals". Keys: "cartId", "itemCatefory", "itemId", "uniqueDealId" (object).
  static void postAddItemFromDeals(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                   const Object& uniqueDealId, const Attributes& attributes = {});

  /// [KesuCommerceCart postAddItemFromWishList:withItemCategory:withItemId:withUniqueWishListId:withAttributes:]
  /// Event "CartAddItemFromWishList". Keys: "cartId", "itemCatefory", "itemId", "uniqueWishListId" (object).
  static void postAddItemFromWishList(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                      const Object& uniqueWishListId, const Attributes& attributes = {});

  /// [KesuCommerceCart postAddItemFromCuratedList:withItemCategory:withItemId:withUniqueCuratedListId:withAttributes:]
  /// Event "CartAddItemFromCuratedList". Keys: "cartId", "itemCatefory", "itemId", "uniqueCuratedListId" (object).
  static void postAddItemFromCuratedList(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                         const Object& uniqueCuratedListId, const Attributes& attributes = {});

  /// [KesuCommerceCart
  /// postAddItemFromRecommendations:withItemCategory:withItemId:withUniqueRecommendationId:withAttributes:] Event
  /// "CartAddItemFromRecommendations". Keys: "cartId", "itemCatefory", "itemId", "uniqueRecommendationId" (object).
  static void postAddItemFromRecommendations(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                             const Object& uniqueRecommendationId, const Attributes& attributes = {});

  /// [KesuCommerceCart postAddItemFromPreviousOrders:withItemCategory:withItemId:withPreviousOrderId:withAttributes:]
  /// Event "CartAddItemFromPrevOrders". Keys: "cartId", "itemCatefory", "itemId", "previousOrderId" (object).
  static void postAddItemFromPreviousOrders(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                            const Object& previousOrderId, const Attributes& attributes = {});

  /// [KesuCommerceCart postAddItemFromSearchResults:withItemCategory:withItemId:withSearchString:withAttributes:]
  /// Event "CartAddItemFromSearchResults". Keys: "cartId", "itemCatefory", "itemId", "searchString" (object).
  static void postAddItemFromSearchResults(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                           const Object& searchString, const Attributes& attributes = {});

  /// [KesuCommerceCart postAddItemFromSubscriptionList:withItemCategory:withItemId:withUniqueDealId:withAttributes:]
  /// Event "CartAddItemFromSubs". Keys: "cartId", "itemCatefory", "itemId", "uniqueDealId" (object).
  static void postAddItemFromSubscriptionList(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                              const Object& uniqueDealId, const Attributes& attributes = {});

  /// [KesuCommerceCart postRemoveItemFromCart:withItemCategory:withItemId:withAttributes:] Event "CartRemoveItem".
  /// Keys: "cartId", "itemCatefory", "itemId" (object).
  static void postRemoveItemFromCart(const Object& cartId, const Object& itemCategory, const Object& itemId,
                                     const Attributes& attributes = {});

  /// [KesuCommerceCart postView:withAttributes:] Event "CartView".
  /// Keys: "cartId" (object).
  static void postView(const Object& cartId, const Attributes& attributes = {});

  /// [KesuCommerceCart postShare:withItemSharedWith:withItemId:withAttributes:] Event "CartShare".
  /// Keys: "cartId", "sharedWith", "itemId" (object).
  static void postShare(const Object& cartId, const Object& itemSharedWith, const Object& itemId,
                        const Attributes& attributes = {});
};

}  // namespace kesu
