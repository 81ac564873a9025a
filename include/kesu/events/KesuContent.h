#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Content that is looked at, searched and rated.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuContent {
 public:
  KesuContent() = delete;

  /// [KesuContent postViewed:category:withUniqueContentId:withAttributes:] Event "ContentView".
  /// Keys: "categoryName", "contentId" (object). Kept: the name of the content is not recorded, unlike everywhere
  /// else in this class.
  static void postViewed(const Object& contentName, const Object& category, const Object& uniqueContentId,
                         const Attributes& attributes = {});

  /// [KesuContent postSearched:withAttributes:] Event "ContentSearch".
  /// Keys: "searchString" (object).
  static void postSearched(const Object& searchString, const Attributes& attributes = {});

  /// [KesuContent postRatedOn5PointScale:category:withUniqueContentId:contentRating:withAttributes:]
  /// Event "ContentRated". Keys: "contentName", "categoryName", "contentId" (object); "rating" (number).
  static void postRatedOn5PointScale(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                     const Object& contentRating, const Attributes& attributes = {});

  /// [KesuContent postRatedThumbsUp:category:withUniqueContentId:withAttributes:] Event "ContentThumbsUp".
  /// Keys: "contentName", "categoryName", "contentId" (object).
  static void postRatedThumbsUp(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                const Attributes& attributes = {});

  /// [KesuContent postRatedThumbsDown:category:withUniqueContentId:withAttributes:] Event "ContentThumbsDown".
  /// Keys: "contentName", "categoryName", "contentId" (object).
  static void postRatedThumbsDown(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                  const Attributes& attributes = {});
};

}  // namespace kesu
