#include <kesu/events/KesuCommerceCuratedList.h>
#include <kesu/events/KesuCommerceWishList.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {
namespace {

void postWishListItem(std::string_view event, const Object& list, const Object& itemCategory, const Object& itemId,
                      const Attributes& attributes) {
  EventBuilder(event, attributes)
      .object("uniqueWishListId", list)
      .object("itemCategory", itemCategory)
      .object("itemId", itemId)
      .post();
}

}  // namespace

void KesuCommerceCuratedList::postCreated(const Object& uniqueCuratedListID, const Object& type,
                                          const Attributes& attributes) {
  EventBuilder("CuratedListCreated", attributes)
      .object("uniqueCuratedListID", uniqueCuratedListID)
      .object("curatedListType", type)
      .post();
}

void KesuCommerceCuratedList::postBrowsed(const Object& curatedList, const Object& creator,
                                          const Attributes& attributes) {
  EventBuilder("CuratedListBrowsed", attributes)
      .object("curatedList", curatedList)
      .object("curatedListCreator", creator)
      .post();
}

// Kept: here the key ends in "Id", elsewhere in "ID".
void KesuCommerceCuratedList::postAddedItem(const Object& uniqueCuratedListId, const Object& category,
                                            const Object& itemId, const Attributes& attributes) {
  EventBuilder("CuratedListAddedItem", attributes)
      .object("uniqueCuratedListId", uniqueCuratedListId)
      .object("itemCategory", category)
      .object("itemID", itemId)
      .post();
}

void KesuCommerceCuratedList::postRemovedItem(const Object& uniqueCuratedListID, const Object& listType,
                                              const Object& itemID, const Attributes& attributes) {
  EventBuilder("CuratedListRemovedItem", attributes)
      .object("uniqueCuratedListID", uniqueCuratedListID)
      .object("curatedListType", listType)
      .object("itemID", itemID)
      .post();
}

void KesuCommerceCuratedList::postShared(const Object& curatedList, const Object& creator,
                                         const Attributes& attributes) {
  EventBuilder("CuratedListShared", attributes)
      .object("curatedList", curatedList)
      .object("curatedLstCreator", creator)
      .post();
}

void KesuCommerceCuratedList::postPublished(const Object& curatedList, const Object& creator,
                                            const Attributes& attributes) {
  EventBuilder("CuratedListPublished", attributes)
      .object("curatedList", curatedList)
      .object("curatedLstCreator", creator)
      .post();
}

void KesuCommerceWishList::postCreated(const Object& uniqueWishListId, const Object& wishListType,
                                       const Attributes& attributes) {
  EventBuilder("WishListCreated", attributes)
      .object("uniqueWishListId", uniqueWishListId)
      .object("wishListtype", wishListType)
      .post();
}

void KesuCommerceWishList::postBrowsed(const Object& uniqueWishListId, const Attributes& attributes) {
  EventBuilder("WishListBrowsed", attributes).object("uniqueWishListId", uniqueWishListId).post();
}

void KesuCommerceWishList::postAddedItem(const Object& uniqueWishListId, const Object& itemCategory,
                                         const Object& itemId, const Attributes& attributes) {
  postWishListItem("WishListAddedItem", uniqueWishListId, itemCategory, itemId, attributes);
}

void KesuCommerceWishList::postRemovedItem(const Object& uniqueWishListId, const Object& itemCategory,
                                           const Object& itemId, const Attributes& attributes) {
  postWishListItem("WishListRemovedItem", uniqueWishListId, itemCategory, itemId, attributes);
}

void KesuCommerceWishList::postShared(const Object& uniqueWishListId, const Attributes& attributes) {
  EventBuilder("WishListShared", attributes).object("uniqueWishListId", uniqueWishListId).post();
}

}  // namespace kesu
