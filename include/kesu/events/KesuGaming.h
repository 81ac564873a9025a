#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Games: levels, scores, goods, achievements, challenges.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuGaming {
 public:
  KesuGaming() = delete;

  /// Posts event "GamingLevelStart": a level was started. Keys: "level" (object).
  /// [KesuGaming postLevelStarted:withAttributes:]
  static void postLevelStarted(const Object& level, const Attributes& attributes = {});

  /// Posts event "GamingLevelEnd": a level ended. Keys: "level", "score", "success" (object).
  /// [KesuGaming postLevelEnded:withScore:withSuccessOrFailure:withAttributes:]
  static void postLevelEnded(const Object& level, const Object& score, const Object& successOrFailure,
                             const Attributes& attributes = {});

  /// Posts event "GamingPowerUp": a power-up was consumed. Keys: "level", "type", "value" (object).
  /// [KesuGaming postPowerUpConsumed:withType:withValue:withAttributes:]
  static void postPowerUpConsumed(const Object& level, const Object& type, const Object& value,
                                  const Attributes& attributes = {});

  /// Posts event "GamingPurchase": an item of the game was bought. Keys: "uniqueItemId", "itemType", "value" (object).
  /// [KesuGaming postInGameItemPurchased:withItemType:withItemValue:withAttributes:]
  static void postInGameItemPurchased(const Object& uniqueItemId, const Object& itemType, const Object& itemValue,
                                      const Attributes& attributes = {});

  /// Posts event "GamingAchievementEarned": an achievement was earned. Keys: "uniqueAchievementId", "type" (object).
  /// [KesuGaming postAchievementEarned:withType:withAttributes:]
  static void postAchievementEarned(const Object& uniqueAchievementId, const Object& type,
                                    const Attributes& attributes = {});

  /// Posts event "GamingSummaryView": a summary was viewed. Keys: "level", "score" (object).
  /// [KesuGaming postSummaryViewed:withScore:withAttributes:]
  static void postSummaryViewed(const Object& level, const Object& score, const Attributes& attributes = {});

  /// Posts event "GamingLeaderBoard": a leader board was viewed. Keys: "level", "score" (object).
  /// [KesuGaming postLeaderBoardViewed:withScore:withAttributes:]
  static void postLeaderBoardViewed(const Object& level, const Object& score, const Attributes& attributes = {});

  /// Posts event "GamingScorecardView": a scorecard was viewed. Keys: "level", "score" (object).
  /// [KesuGaming postScorecardViewed:withScore:withAttributes:]
  static void postScorecardViewed(const Object& level, const Object& score, const Attributes& attributes = {});

  /// Posts event "GamingHelpView": a page of help was viewed. Keys: "helpTopicId" (object).
  /// [KesuGaming postHelpViewed:withAttributes:]
  static void postHelpViewed(const Object& helpTopicId, const Attributes& attributes = {});

  /// Posts event "GamingTutorialView": a tutorial was viewed. Keys: "helpTopicId" (object).
  /// [KesuGaming postTutorialViewed:withAttributes:]
  static void postTutorialViewed(const Object& helpTopicId, const Attributes& attributes = {});

  /// Posts event "GamingFriendChallenge": a friend was challenged. No keys of its own.
  /// [KesuGaming postFriendChallenged:]
  static void postFriendChallenged(const Attributes& attributes = {});

  /// Posts event "GamingChallengeAccepted": a challenge was accepted. No keys of its own.
  /// [KesuGaming postChallengeAccepted:]
  static void postChallengeAccepted(const Attributes& attributes = {});

  /// Posts event "GamingChallengeDeclined": a challenge was declined. No keys of its own.
  /// [KesuGaming postChallengeDeclined:]
  static void postChallengeDeclined(const Attributes& attributes = {});

  /// Posts event "GamingStart": a game was started. Keys: "level" (object). [KesuGaming postGameStart:withAttributes:]
  static void postGameStart(const Object& level, const Attributes& attributes = {});

  /// Posts event "GamingEnd": a game ended. Keys: "levelsPlayed", "levelsWon" (object).
  /// [KesuGaming postGameEnd:withLevelsWon:withAttributes:]
  static void postGameEnd(const Object& levelsPlayed, const Object& levelsWon, const Attributes& attributes = {});
};

}  // namespace kesu
