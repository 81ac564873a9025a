#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Training: started, ended, goals, challenges.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuHealthAndFitness {
 public:
  KesuHealthAndFitness() = delete;

  /// [KesuHealthAndFitness postStarted:] Event "HealthAndFitnessStarted", no keys of its own.
  static void postStarted(const Attributes& attributes = {});

  /// [KesuHealthAndFitness postEnded:] Event "HealthAndFitnessEnded", no keys of its own.
  static void postEnded(const Attributes& attributes = {});

  /// [KesuHealthAndFitness postAchievementReceived:] Event "HealthAndFitnessAchievement", no keys of its own.
  static void postAchievementReceived(const Attributes& attributes = {});

  /// [KesuHealthAndFitness postStepGoalCompleted:] Event "HealthAndFitnessStepGoal", no keys of its own.
  static void postStepGoalCompleted(const Attributes& attributes = {});

  /// [KesuHealthAndFitness postGoalCompleted:] Event "HealthAndFitnessGoalCompleted", no keys of its own.
  static void postGoalCompleted(const Attributes& attributes = {});

  /// [KesuHealthAndFitness postChallengedFriend:] Event "HealthAndFitnessChallengeFriend", no keys of its own.
  static void postChallengedFriend(const Attributes& attributes = {});

  /// [KesuHealthAndFitness postChallengeAccepted:] Event "HealthAndFitnessChallengeAccepted", no keys of its own.
  static void postChallengeAccepted(const Attributes& attributes = {});
};

}  // namespace kesu
