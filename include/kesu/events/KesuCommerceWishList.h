#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// A customer's own lists of wishes.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuCommerceWishList {
 public:
  KesuCommerceWishList() = delete;

  /// Posts event "WishListCreated": a wish list was created. Keys: "uniqueWishListId", "wishListtype" (object).
  /// [KesuCommerceWishList postCreated:withWishListType:withAttributes:]
  static void postCreated(const Object& uniqueWishListId, const Object& wishListType,
                          const Attributes& attributes = {});

  /// Posts event "WishListBrowsed": a wish list was browsed. Keys: "uniqueWishListId" (object).
  /// [KesuCommerceWishList postBrowsed:withAttributes:]
  static void postBrowsed(const Object& uniqueWishListId, const Attributes& attributes = {});

  /// Posts event "WishListAddedItem": an item was added to a wish list. Keys: "uniqueWishListId", "itemCategory",
  /// "itemId" (object). [KesuCommerceWishList postAddedItem:withItemCategory:withItemId:withAttributes:]
  static void postAddedItem(const Object& uniqueWishListId, const Object& itemCategory, const Object& itemId,
                            const Attributes& attributes = {});

  /// Posts event "WishListRemovedItem": an item was removed from a wish list. Keys: "uniqueWishListId", "itemCategory",
  /// "itemId" (object). [KesuCommerceWishList postRemovedItem:withItemCategory:withItemId:withAttributes:]
  static void postRemovedItem(const Object& uniqueWishListId, const Object& itemCategory, const Object& itemId,
                              const Attributes& attributes = {});

  /// Posts event "WishListShared": a wish list was shared. Keys: "uniqueWishListId" (object).
  /// [KesuCommerceWishList postShared:withAttributes:]
  static void postShared(const Object& uniqueWishListId, const Attributes& attributes = {});
};

}  // namespace kesu
