#include <kesu/events/KesuGaming.h>
#include <kesu/events/KesuSceneFlow.h>

#include "events/EventPoster.h"
#include "events/catalogue/EventBuilder.h"

namespace kesu {
namespace {

void postScore(std::string_view event, const Object& level, const Object& score, const Attributes& attributes) {
  EventBuilder(event, attributes).object("level", level).object("score", score).post();
}

}  // namespace

void KesuGaming::postLevelStarted(const Object& level, const Attributes& attributes) {
  EventBuilder("GamingLevelStart", attributes).object("level", level).post();
}

void KesuGaming::postLevelEnded(const Object& level, const Object& score, const Object& successOrFailure,
                                const Attributes& attributes) {
  EventBuilder("GamingLevelEnd", attributes)
      .object("level", level)
      .object("score", score)
      .object("success", successOrFailure)
      .post();
}

void KesuGaming::postPowerUpConsumed(const Object& level, const Object& type, const Object& value,
                                     const Attributes& attributes) {
  EventBuilder("GamingPowerUp", attributes).object("level", level).object("type", type).object("value", value).post();
}

void KesuGaming::postInGameItemPurchased(const Object& uniqueItemId, const Object& itemType, const Object& itemValue,
                                         const Attributes& attributes) {
  EventBuilder("GamingPurchase", attributes)
      .object("uniqueItemId", uniqueItemId)
      .object("itemType", itemType)
      .object("value", itemValue)
      .post();
}

void KesuGaming::postAchievementEarned(const Object& uniqueAchievementId, const Object& type,
                                       const Attributes& attributes) {
  EventBuilder("GamingAchievementEarned", attributes)
      .object("uniqueAchievementId", uniqueAchievementId)
      .object("type", type)
      .post();
}

void KesuGaming::postSummaryViewed(const Object& level, const Object& score, const Attributes& attributes) {
  postScore("GamingSummaryView", level, score, attributes);
}

void KesuGaming::postLeaderBoardViewed(const Object& level, const Object& score, const Attributes& attributes) {
  postScore("GamingLeaderBoard", level, score, attributes);
}

void KesuGaming::postScorecardViewed(const Object& level, const Object& score, const Attributes& attributes) {
  postScore("GamingScorecardView", level, score, attributes);
}

void KesuGaming::postHelpViewed(const Object& helpTopicId, const Attributes& attributes) {
  EventBuilder("GamingHelpView", attributes).object("helpTopicId", helpTopicId).post();
}

void KesuGaming::postTutorialViewed(const Object& helpTopicId, const Attributes& attributes) {
  EventBuilder("GamingTutorialView", attributes).object("helpTopicId", helpTopicId).post();
}

void KesuGaming::postFriendChallenged(const Attributes& attributes) {
  EventBuilder("GamingFriendChallenge", attributes).post();
}

void KesuGaming::postChallengeAccepted(const Attributes& attributes) {
  EventBuilder("GamingChallengeAccepted", attributes).post();
}

void KesuGaming::postChallengeDeclined(const Attributes& attributes) {
  EventBuilder("GamingChallengeDeclined", attributes).post();
}

void KesuGaming::postGameStart(const Object& level, const Attributes& attributes) {
  EventBuilder("GamingStart", attributes).object("level", level).post();
}

void KesuGaming::postGameEnd(const Object& levelsPlayed, const Object& levelsWon, const Attributes& attributes) {
  EventBuilder("GamingEnd", attributes).object("levelsPlayed", levelsPlayed).object("levelsWon", levelsWon).post();
}

void KesuSceneFlow::postSecondsOnScene(const Object& sceneName, double seconds) {
  const std::string* name = sceneName ? sceneName->text() : nullptr;
  if (name != nullptr && !name->empty()) {
    EventPoster::shared().updateScreenFlowForScenes(*name, seconds);
  }
}

}  // namespace kesu
