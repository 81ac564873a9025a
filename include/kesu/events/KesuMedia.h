#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Media that are played, searched and rated.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuMedia {
 public:
  KesuMedia() = delete;

  /// [KesuMedia postPlayedMedia:mediaType:category:percentPlayed:withUniqueContentId:withAttributes:]
  /// Event "MediaPlayed". Keys: "contentName", "categoryName", "percent", "contentId" (object). Kept: the type of the
  /// media is not recorded.
  static void postPlayedMedia(const Object& contentName, const Object& mediaType, const Object& category,
                              const Object& percentPlayed, const Object& uniqueContentId,
                              const Attributes& attributes = {});

  /// [KesuMedia postSearched:withAttributes:] Event "MediaSearched".
  /// Keys: "searchString" (object).
  static void postSearched(const Object& searchString, const Attributes& attributes = {});

  /// [KesuMedia postRatedOn5PointScale:category:withUniqueContentId:contentRating:withAttributes:]
  /// Event "MediaRated". Keys: "contentName", "categoryName", "contentId" (object); "rating" (number).
  static void postRatedOn5PointScale(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                     const Object& contentRating, const Attributes& attributes = {});

  /// [KesuMedia postRatedThumbsUp:category:withUniqueContentId:withAttributes:] Event "MediaThumbsUp".
  /// Keys: "contentName", "categoryName", "contentId" (object).
  static void postRatedThumbsUp(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                const Attributes& attributes = {});

  /// [KesuMedia postRatedThumbsDown:category:withUniqueContentId:withAttributes:] Event "MediaThumbsDown".
  /// Keys: "contentName", "categoryName", "contentId" (object).
  static void postRatedThumbsDown(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                  const Attributes& attributes = {});
};

}  // namespace kesu
