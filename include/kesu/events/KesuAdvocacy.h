#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Feedback and ratings that the host asks its users for.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuAdvocacy {
 public:
  KesuAdvocacy() = delete;

  /// [KesuAdvocacy postRequestForFeedback:] Event "AdvocacyRequestForFeedback", no keys of its own.
  static void postRequestForFeedback(const Attributes& attributes = {});

  /// [KesuAdvocacy postFeedbackProvided:] Event "AdvocacyFeedbackProvided", no keys of its own.
  static void postFeedbackProvided(const Attributes& attributes = {});

  /// [KesuAdvocacy postRequestRating:] Event "AdvocacyRequestRating", no keys of its own.
  static void postRequestRating(const Attributes& attributes = {});
};

}  // namespace kesu
