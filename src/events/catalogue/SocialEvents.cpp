#include <kesu/events/KesuSocial.h>
#include <kesu/events/KesuTasks.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {
namespace {

void postAboutContent(std::string_view event, const Object& network, const Object& contentReference,
                      const Object& category, const Attributes& attributes) {
  EventBuilder(event, attributes)
      .object("socialNetworkName", network)
      .object("contentReference", contentReference)
      .object("category", category)
      .post();
}

}  // namespace

void KesuSocial::postSocialContentShareForNetworkName(const Object& socialNetworkName, const Object& contentReference,
                                                      const Object& category, const Attributes& attributes) {
  postAboutContent("SocialContentShare", socialNetworkName, contentReference, category, attributes);
}

void KesuSocial::postLiked(const Object& socialNetworkName, const Object& contentReference, const Object& category,
                           const Attributes& attributes) {
  postAboutContent("SocialLike", socialNetworkName, contentReference, category, attributes);
}

void KesuSocial::postFollowed(const Object& socialNetworkName, const Object& contentReference, const Object& category,
                              const Attributes& attributes) {
  postAboutContent("SocialFollow", socialNetworkName, contentReference, category, attributes);
}

void KesuSocial::postSubscribed(const Object& socialNetworkName, const Object& contentReference, const Object& category,
                                const Attributes& attributes) {
  postAboutContent("SocialSubscribe", socialNetworkName, contentReference, category, attributes);
}

void KesuSocial::postInvitedFriend(const Object& socialNetworkName, const Attributes& attributes) {
  EventBuilder("SocialInviteFriend", attributes).object("socialNetworkName", socialNetworkName).post();
}

void KesuSocial::postFoundFriends(const Object& source, const Attributes& attributes) {
  EventBuilder("SocialFoundFriends", attributes).object("source", source).post();
}

void KesuTasks::addToCalendarwithAttributes(const Attributes& attributes) {
  EventBuilder("AddToCalendar", attributes).post();
}

}  // namespace kesu
