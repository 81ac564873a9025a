#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Media that are played, searched and rated.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuMedia {
 public:
  KesuMedia() = delete;

  /// Posts event "MediaPlayed": media were played. Keys: "contentName", "categoryName", "percent", "contentId"
  /// (object). Kept: the type of the media is not recorded.
  /// [KesuMedia postPlayedMedia:mediaType:category:percentPlayed:withUniqueContentId:withAttributes:]
  static void postPlayedMedia(const Object& contentName, const Object& mediaType, const Object& category,
                              const Object& percentPlayed, const Object& uniqueContentId,
                              const Attributes& attributes = {});

  /// Posts event "MediaSearched": media were searched for. Keys: "searchString" (object).
  /// [KesuMedia postSearched:withAttributes:]
  static void postSearched(const Object& searchString, const Attributes& attributes = {});

  /// Posts event "MediaRated": media were rated on a scale of five. Keys: "contentName", "categoryName", "contentId"
  /// (object); "rating" (number).
  /// [KesuMedia postRatedOn5PointScale:category:withUniqueContentId:contentRating:withAttributes:]
  static void postRatedOn5PointScale(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                     const Object& contentRating, const Attributes& attributes = {});

  /// Posts event "MediaThumbsUp": media were rated with a thumb up. Keys: "contentName", "categoryName", "contentId"
  /// (object). [KesuMedia postRatedThumbsUp:category:withUniqueContentId:withAttributes:]
  static void postRatedThumbsUp(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                const Attributes& attributes = {});

  /// Posts event "MediaThumbsDown": media were rated with a thumb down. Keys: "contentName", "categoryName",
  /// "contentId" (object). [KesuMedia postRatedThumbsDown:category:withUniqueContentId:withAttributes:]
  static void postRatedThumbsDown(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                  const Attributes& attributes = {});
};

}  // namespace kesu
