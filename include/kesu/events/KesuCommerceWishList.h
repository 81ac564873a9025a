#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// A customer's own lists of wishes.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuCommerceWishList {
 public:
  KesuCommerceWishList() = delete;

  /// [KesuCommerceWishList postCreated:withWishListType:withAttributes:] Event "WishListCreated".
  /// Keys: "uniqueWishListId", "wishListtype" (object).
  static void postCreated(const Object& uniqueWishListId, const Object& wishListType,
                          const Attributes& attributes = {});

  /// [KesuCommerceWishList postBrowsed:withAttributes:] Event "WishListBrowsed".
  /// Keys: "uniqueWishListId" (object).
  static void postBrowsed(const Object& uniqueWishListId, const Attributes& attributes = {});

  /// [KesuCommerceWishList postAddedItem:withItemCategory:withItemId:withAttributes:] Event "WishListAddedItem".
  /// Keys: "uniqueWishListId", "itemCategory", "itemId" (object).
  static void postAddedItem(const Object& uniqueWishListId, const Object& itemCategory, const Object& itemId,
                            const Attributes& attributes = {});

  /// [KesuCommerceWishList postRemovedItem:withItemCategory:withItemId:withAttributes:] Event "WishListRemovedItem".
  /// Keys: "uniqueWishListId", "itemCategory", "itemId" (object).
  static void postRemovedItem(const Object& uniqueWishListId, const Object& itemCategory, const Object& itemId,
                              const Attributes& attributes = {});

  /// [KesuCommerceWishList postShared:withAttributes:] Event "WishListShared".
  /// Keys: "uniqueWishListId" (object).
  static void postShared(const Object& uniqueWishListId, const Attributes& attributes = {});
};

}  // namespace kesu
