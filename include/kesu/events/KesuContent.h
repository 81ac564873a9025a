#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Content that is looked at, searched and rated.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuContent {
 public:
  KesuContent() = delete;

  /// Posts event "ContentView": content was viewed. Keys: "categoryName", "contentId" (object). Kept: the name of the
  /// content is not recorded, unlike everywhere else in this class.
  /// [KesuContent postViewed:category:withUniqueContentId:withAttributes:]
  static void postViewed(const Object& contentName, const Object& category, const Object& uniqueContentId,
                         const Attributes& attributes = {});

  /// Posts event "ContentSearch": content was searched for. Keys: "searchString" (object).
  /// [KesuContent postSearched:withAttributes:]
  static void postSearched(const Object& searchString, const Attributes& attributes = {});

  /// Posts event "ContentRated": content was rated on a scale of five. Keys: "contentName", "categoryName", "contentId"
  /// (object); "rating" (number).
  /// [KesuContent postRatedOn5PointScale:category:withUniqueContentId:contentRating:withAttributes:]
  static void postRatedOn5PointScale(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                     const Object& contentRating, const Attributes& attributes = {});

  /// Posts event "ContentThumbsUp": content was rated with a thumb up. Keys: "contentName", "categoryName", "contentId"
  /// (object). [KesuContent postRatedThumbsUp:category:withUniqueContentId:withAttributes:]
  static void postRatedThumbsUp(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                const Attributes& attributes = {});

  /// Posts event "ContentThumbsDown": content was rated with a thumb down. Keys: "contentName", "categoryName",
  /// "contentId" (object). [KesuContent postRatedThumbsDown:category:withUniqueContentId:withAttributes:]
  static void postRatedThumbsDown(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                  const Attributes& attributes = {});
};

}  // namespace kesu
