#include <kesu/events/KesuContent.h>
#include <kesu/events/KesuMedia.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {
namespace {

EventBuilder contentEvent(std::string_view event, const Object& contentName, const Object& category,
                          const Object& contentId, const Attributes& attributes) {
  return EventBuilder(event, attributes)
      .object("contentName", contentName)
      .object("categoryName", category)
      .object("contentId", contentId);
}

}  // namespace

// Kept: the name of the content is not recorded.
void KesuContent::postViewed(const Object&, const Object& category, const Object& uniqueContentId,
                             const Attributes& attributes) {
  EventBuilder("ContentView", attributes).object("categoryName", category).object("contentId", uniqueContentId).post();
}

void KesuContent::postSearched(const Object& searchString, const Attributes& attributes) {
  EventBuilder("ContentSearch", attributes).object("searchString", searchString).post();
}

void KesuContent::postRatedOn5PointScale(const Object& contentName, const Object& category,
                                         const Object& uniqueContentId, const Object& contentRating,
                                         const Attributes& attributes) {
  contentEvent("ContentRated", contentName, category, uniqueContentId, attributes)
      .number("rating", contentRating)
      .post();
}

void KesuContent::postRatedThumbsUp(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                    const Attributes& attributes) {
  contentEvent("ContentThumbsUp", contentName, category, uniqueContentId, attributes).post();
}

void KesuContent::postRatedThumbsDown(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                      const Attributes& attributes) {
  contentEvent("ContentThumbsDown", contentName, category, uniqueContentId, attributes).post();
}

// Kept: the type of the media is not recorded.
void KesuMedia::postPlayedMedia(const Object& contentName, const Object&, const Object& category,
                                const Object& percentPlayed, const Object& uniqueContentId,
                                const Attributes& attributes) {
  EventBuilder("MediaPlayed", attributes)
      .object("contentName", contentName)
      .object("categoryName", category)
      .object("percent", percentPlayed)
      .object("contentId", uniqueContentId)
      .post();
}

void KesuMedia::postSearched(const Object& searchString, const Attributes& attributes) {
  EventBuilder("MediaSearched", attributes).object("searchString", searchString).post();
}

void KesuMedia::postRatedOn5PointScale(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                       const Object& contentRating, const Attributes& attributes) {
  contentEvent("MediaRated", contentName, category, uniqueContentId, attributes).number("rating", contentRating).post();
}

void KesuMedia::postRatedThumbsUp(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                  const Attributes& attributes) {
  contentEvent("MediaThumbsUp", contentName, category, uniqueContentId, attributes).post();
}

void KesuMedia::postRatedThumbsDown(const Object& contentName, const Object& category, const Object& uniqueContentId,
                                    const Attributes& attributes) {
  contentEvent("MediaThumbsDown", contentName, category, uniqueContentId, attributes).post();
}

}  // namespace kesu
