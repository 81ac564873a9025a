#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Lists of goods that somebody put together for others.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuCommerceCuratedList {
 public:
  KesuCommerceCuratedList() = delete;

  /// [KesuCommerceCuratedList postCreated:withType:withAttributes:] Event "CuratedListCreated".
  /// Keys: "uniqueCuratedListID", "curatedListType" (object).
  static void postCreated(const Object& uniqueCuratedListID, const Object& type, const Attributes& attributes = {});

  /// [KesuCommerceCuratedList postBrowsed:withCreator:withAttributes:] Event "CuratedListBrowsed".
  /// Keys: "curatedList", "curatedListCreator" (object).
  static void postBrowsed(const Object& curatedList, const Object& creator, const Attributes& attributes = {});

  /// [KesuCommerceCuratedList postAddedItem:withCategory:withItemId:withAttributes:] Event "CuratedListAddedItem".
  /// Keys: "uniqueCuratedListId", "itemCategory", "itemID" (object).
  static void postAddedItem(const Object& uniqueCuratedListId, const Object& category, const Object& itemId,
                            const Attributes& attributes = {});

  /// [KesuCommerceCuratedList postRemovedItem:withListType:withItemID:withAttributes:]
  /// Event "CuratedListRemovedItem". Keys: "uniqueCuratedListID", "curatedListType", "itemID" (object).
  static void postRemovedItem(const Object& uniqueCuratedListID, const Object& listType, const Object& itemID,
                              const Attributes& attributes = {});

  /// [KesuCommerceCuratedList postShared:withCreator:withAttributes:] Event "CuratedListShared".
  /// Keys: "curatedList", "curatedLstCreator" (object).
  static void postShared(const Object& curatedList, const Object& creator, const Attributes& attributes = {});

  /// [KesuCommerceCuratedList postPublished:withCreator:withAttributes:] Event "CuratedListPublished".
  /// Keys: "curatedList", "curatedLstCreator" (object).
  static void postPublished(const Object& curatedList, const Object& creator, const Attributes& attributes = {});
};

}  // namespace kesu
