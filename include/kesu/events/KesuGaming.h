#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Games: levels, scores, goods, achievements, challenges.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuGaming {
 public:
  KesuGaming() = delete;

  /// [KesuGaming postLevelStarted:withAttributes:] Event "GamingLevelStart".
  /// Keys: "level" (object).
  static void postLevelStarted(const Object& level, const Attributes& attributes = {});

  /// [KesuGaming postLevelEnded:withScore:withSuccessOrFailure:withAttributes:] Event "GamingLevelEnd".
  /// Keys: "level", "score", "success" (object).
  static void postLevelEnded(const Object& level, const Object& score, const Object& successOrFailure,
                             const Attributes& attributes = {});

  /// [KesuGaming postPowerUpConsumed:withType:withValue:withAttributes:] Event "GamingPowerUp".
  /// Keys: "level", "type", "value" (object).
  static void postPowerUpConsumed(const Object& level, const Object& type, const Object& value,
                                  const Attributes& attributes = {});

  /// [KesuGaming postInGameItemPurchased:withItemType:withItemValue:withAttributes:] Event "GamingPurchase".
  /// Keys: "uniqueItemId", "itemType", "value" (object).
  static void postInGameItemPurchased(const Object& uniqueItemId, const Object& itemType, const Object& itemValue,
                                      const Attributes& attributes = {});

  /// [KesuGaming postAchievementEarned:withType:withAttributes:] Event "GamingAchievementEarned".
  /// Keys: "uniqueAchievementId", "type" (object).
  static void postAchievementEarned(const Object& uniqueAchievementId, const Object& type,
                                    const Attributes& attributes = {});

  /// [KesuGaming postSummaryViewed:withScore:withAttributes:] Event "GamingSummaryView".
  /// Keys: "level", "score" (object).
  static void postSummaryViewed(const Object& level, const Object& score, const Attributes& attributes = {});

  /// [KesuGaming postLeaderBoardViewed:withScore:withAttributes:] Event "GamingLeaderBoard".
  /// Keys: "level", "score" (object).
  static void postLeaderBoardViewed(const Object& level, const Object& score, const Attributes& attributes = {});

  /// [KesuGaming postScorecardViewed:withScore:withAttributes:] Event "GamingScorecardView".
  /// Keys: "level", "score" (object).
  static void postScorecardViewed(const Object& level, const Object& score, const Attributes& attributes = {});

  /// [KesuGaming postHelpViewed:withAttributes:] Event "GamingHelpView".
  /// Keys: "helpTopicId" (object).
  static void postHelpViewed(const Object& helpTopicId, const Attributes& attributes = {});

  /// [KesuGaming postTutorialViewed:withAttributes:] Event "GamingTutorialView".
  /// Keys: "helpTopicId" (object).
  static void postTutorialViewed(const Object& helpTopicId, const Attributes& attributes = {});

  /// [KesuGaming postFriendChallenged:] Event "GamingFriendChallenge", no keys of its own.
  static void postFriendChallenged(const Attributes& attributes = {});

  /// [KesuGaming postChallengeAccepted:] Event "GamingChallengeAccepted", no keys of its own.
  static void postChallengeAccepted(const Attributes& attributes = {});

  /// [KesuGaming postChallengeDeclined:] Event "GamingChallengeDeclined", no keys of its own.
  static void postChallengeDeclined(const Attributes& attributes = {});

  /// [KesuGaming postGameStart:withAttributes:] Event "GamingStart".
  /// Keys: "level" (object).
  static void postGameStart(const Object& level, const Attributes& attributes = {});

  /// [KesuGaming postGameEnd:withLevelsWon:withAttributes:] Event "GamingEnd".
  /// Keys: "levelsPlayed", "levelsWon" (object).
  static void postGameEnd(const Object& levelsPlayed, const Object& levelsWon, const Attributes& attributes = {});
};

}  // namespace kesu
