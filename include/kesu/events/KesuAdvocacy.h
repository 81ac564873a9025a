#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Feedback and ratings that the host asks its users for.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuAdvocacy {
 public:
  KesuAdvocacy() = delete;

  /// Posts event "AdvocacyRequestForFeedback": the user was asked for feedback. No keys of its own.
  /// [KesuAdvocacy postRequestForFeedback:]
  static void postRequestForFeedback(const Attributes& attributes = {});

  /// Posts event "AdvocacyFeedbackProvided": the user gave feedback. No keys of its own.
  /// [KesuAdvocacy postFeedbackProvided:]
  static void postFeedbackProvided(const Attributes& attributes = {});

  /// Posts event "AdvocacyRequestRating": the user was asked for a rating. No keys of its own.
  /// [KesuAdvocacy postRequestRating:]
  static void postRequestRating(const Attributes& attributes = {});
};

}  // namespace kesu
