#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Sharing and friends in social networks.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuSocial {
 public:
  KesuSocial() = delete;

  /// [KesuSocial postSocialContentShareForNetworkName:forContentReference:category:withAttributes:]
  /// Event "SocialContentShare". Keys: "socialNetworkName", "contentReference", "category" (object).
  static void postSocialContentShareForNetworkName(const Object& socialNetworkName, const Object& contentReference,
                                                   const Object& category, const Attributes& attributes = {});

  /// [KesuSocial postLiked:forContentReference:category:withAttributes:] Event "SocialLike".
  /// Keys: "socialNetworkName", "contentReference", "category" (object).
  static void postLiked(const Object& socialNetworkName, const Object& contentReference, const Object& category,
                        const Attributes& attributes = {});

  /// [KesuSocial postFollowed:forContentReference:category:withAttributes:] Event "SocialFollow".
  /// Keys: "socialNetworkName", "contentReference", "category" (object).
  static void postFollowed(const Object& socialNetworkName, const Object& contentReference, const Object& category,
                           const Attributes& attributes = {});

  /// [KesuSocial postSubscribed:forContentReference:category:withAttributes:] Event "SocialSubscribe".
  /// Keys: "socialNetworkName", "contentReference", "category" (object).
  static void postSubscribed(const Object& socialNetworkName, const Object& contentReference, const Object& category,
                             const Attributes& attributes = {});

  /// [KesuSocial postInvitedFriend:withAttributes:] Event "SocialInviteFriend".
  /// Keys: "socialNetworkName" (object).
  static void postInvitedFriend(const Object& socialNetworkName, const Attributes& attributes = {});

  /// [KesuSocial postFoundFriends:withAtrributes:] Event "SocialFoundFriends".
  /// Keys: "source" (object).
  static void postFoundFriends(const Object& source, const Attributes& attributes = {});
};

}  // namespace kesu
