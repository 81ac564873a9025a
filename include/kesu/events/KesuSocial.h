#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Sharing and friends in social networks.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuSocial {
 public:
  KesuSocial() = delete;

  /// Posts event "SocialContentShare": content was shared in a social network. Keys: "socialNetworkName",
  /// "contentReference", "category" (object).
  /// [KesuSocial postSocialContentShareForNetworkName:forContentReference:category:withAttributes:]
  static void postSocialContentShareForNetworkName(const Object& socialNetworkName, const Object& contentReference,
                                                   const Object& category, const Attributes& attributes = {});

  /// Posts event "SocialLike": content was liked. Keys: "socialNetworkName", "contentReference", "category" (object).
  /// [KesuSocial postLiked:forContentReference:category:withAttributes:]
  static void postLiked(const Object& socialNetworkName, const Object& contentReference, const Object& category,
                        const Attributes& attributes = {});

  /// Posts event "SocialFollow": content was followed. Keys: "socialNetworkName", "contentReference", "category"
  /// (object). [KesuSocial postFollowed:forContentReference:category:withAttributes:]
  static void postFollowed(const Object& socialNetworkName, const Object& contentReference, const Object& category,
                           const Attributes& attributes = {});

  /// Posts event "SocialSubscribe": content was subscribed to. Keys: "socialNetworkName", "contentReference",
  /// "category" (object). [KesuSocial postSubscribed:forContentReference:category:withAttributes:]
  static void postSubscribed(const Object& socialNetworkName, const Object& contentReference, const Object& category,
                             const Attributes& attributes = {});

  /// Posts event "SocialInviteFriend": a friend was invited. Keys: "socialNetworkName" (object).
  /// [KesuSocial postInvitedFriend:withAttributes:]
  static void postInvitedFriend(const Object& socialNetworkName, const Attributes& attributes = {});

  /// Posts event "SocialFoundFriends": friends were found. Keys: "source" (object).
  /// [KesuSocial postFoundFriends:withAtrributes:]
  static void postFoundFriends(const Object& source, const Attributes& attributes = {});
};

}  // namespace kesu
