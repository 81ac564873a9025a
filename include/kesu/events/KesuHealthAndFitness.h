#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Workouts: started, ended, goals, challenges.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuHealthAndFitness {
 public:
  KesuHealthAndFitness() = delete;

  /// Posts event "HealthAndFitnessStarted": a workout was started. No keys of its own.
  /// [KesuHealthAndFitness postStarted:]
  static void postStarted(const Attributes& attributes = {});

  /// Posts event "HealthAndFitnessEnded": a workout ended. No keys of its own. [KesuHealthAndFitness postEnded:]
  static void postEnded(const Attributes& attributes = {});

  /// Posts event "HealthAndFitnessAchievement": an achievement was earned. No keys of its own.
  /// [KesuHealthAndFitness postAchievementReceived:]
  static void postAchievementReceived(const Attributes& attributes = {});

  /// Posts event "HealthAndFitnessStepGoal": the goal of a number of steps was reached. No keys of its own.
  /// [KesuHealthAndFitness postStepGoalCompleted:]
  static void postStepGoalCompleted(const Attributes& attributes = {});

  /// Posts event "HealthAndFitnessGoalCompleted": a goal was reached. No keys of its own.
  /// [KesuHealthAndFitness postGoalCompleted:]
  static void postGoalCompleted(const Attributes& attributes = {});

  /// Posts event "HealthAndFitnessChallengeFriend": a friend was challenged. No keys of its own.
  /// [KesuHealthAndFitness postChallengedFriend:]
  static void postChallengedFriend(const Attributes& attributes = {});

  /// Posts event "HealthAndFitnessChallengeAccepted": a challenge was accepted. No keys of its own.
  /// [KesuHealthAndFitness postChallengeAccepted:]
  static void postChallengeAccepted(const Attributes& attributes = {});
};

}  // namespace kesu
