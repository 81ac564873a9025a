#include <kesu/events/KesuHealthAndFitness.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {

void KesuHealthAndFitness::postStarted(const Attributes& attributes) {
  EventBuilder("HealthAndFitnessStarted", attributes).post();
}

void KesuHealthAndFitness::postEnded(const Attributes& attributes) {
  EventBuilder("HealthAndFitnessEnded", attributes).post();
}

void KesuHealthAndFitness::postAchievementReceived(const Attributes& attributes) {
  EventBuilder("HealthAndFitnessAchievement", attributes).post();
}

void KesuHealthAndFitness::postStepGoalCompleted(const Attributes& attributes) {
  EventBuilder("HealthAndFitnessStepGoal", attributes).post();
}

void KesuHealthAndFitness::postGoalCompleted(const Attributes& attributes) {
  EventBuilder("HealthAndFitnessGoalCompleted", attributes).post();
}

void KesuHealthAndFitness::postChallengedFriend(const Attributes& attributes) {
  EventBuilder("HealthAndFitnessChallengeFriend", attributes).post();
}

void KesuHealthAndFitness::postChallengeAccepted(const Attributes& attributes) {
  EventBuilder("HealthAndFitnessChallengeAccepted", attributes).post();
}

}  // namespace kesu
