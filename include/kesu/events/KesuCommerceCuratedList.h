#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Lists of goods that one person puts together for others.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuCommerceCuratedList {
 public:
  KesuCommerceCuratedList() = delete;

  /// Posts event "CuratedListCreated": a curated list was created. Keys: "uniqueCuratedListID", "curatedListType"
  /// (object). [KesuCommerceCuratedList postCreated:withType:withAttributes:]
  static void postCreated(const Object& uniqueCuratedListID, const Object& type, const Attributes& attributes = {});

  /// Posts event "CuratedListBrowsed": a curated list was browsed. Keys: "curatedList", "curatedListCreator" (object).
  /// [KesuCommerceCuratedList postBrowsed:withCreator:withAttributes:]
  static void postBrowsed(const Object& curatedList, const Object& creator, const Attributes& attributes = {});

  /// Posts event "CuratedListAddedItem": an item was added to a curated list. Keys: "uniqueCuratedListId",
  /// "itemCategory", "itemID" (object). [KesuCommerceCuratedList postAddedItem:withCategory:withItemId:withAttributes:]
  static void postAddedItem(const Object& uniqueCuratedListId, const Object& category, const Object& itemId,
                            const Attributes& attributes = {});

  /// Posts event "CuratedListRemovedItem": an item was removed from a curated list. Keys: "uniqueCuratedListID",
  /// "curatedListType", "itemID" (object).
  /// [KesuCommerceCuratedList postRemovedItem:withListType:withItemID:withAttributes:]
  static void postRemovedItem(const Object& uniqueCuratedListID, const Object& listType, const Object& itemID,
                              const Attributes& attributes = {});

  /// Posts event "CuratedListShared": a curated list was shared. Keys: "curatedList", "curatedLstCreator" (object).
  /// [KesuCommerceCuratedList postShared:withCreator:withAttributes:]
  static void postShared(const Object& curatedList, const Object& creator, const Attributes& attributes = {});

  /// Posts event "CuratedListPublished": a curated list was published. Keys: "curatedList", "curatedLstCreator"
  /// (object). [KesuCommerceCuratedList postPublished:withCreator:withAttributes:]
  static void postPublished(const Object& curatedList, const Object& creator, const Attributes& attributes = {});
};

}  // namespace kesu
