#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <functional>

namespace kesu {

/// The personalization tags that the service has assigned to this installation. The last non-empty list is kept in the
/// user defaults, so that queries need no network and work before Kesu::initialize() and after a change of the
/// application key, too. Any thread.
class KESU_API KesuPersonalizationIntelligence {
 public:
  /// Receives the tags (an array of texts, as the service sent it), or nil when there are none or they could not be
  /// fetched.
  using TagsHandler = std::function<void(const Object& tags)>;

  /// Returns the shared object. It has no state of its own: its operations are those of the class.
  /// [KesuPersonalizationIntelligence sharedInstance]
  static KesuPersonalizationIntelligence& sharedInstance();

  /// Fetches the tags, keeps them when there is at least one, and calls `completion` with them on the main thread.
  /// Returns before that. `completion` may be empty; what it refers to must live until it is called. A reply that
  /// carries both an error and tags calls it twice (first with nil), a complete reply without a body never.
  /// Application::willTerminate() calls a pending one with nil; at the exit of a program that does not call it,
  /// completions are not called. The request names application and installation as far as they are known: call this
  /// after Kesu::initialize(). [KesuPersonalizationIntelligence getTags:]
  static void getTags(TagsHandler completion);

  /// Returns whether the kept list contains the tag; false for a missing or empty one.
  /// [KesuPersonalizationIntelligence isTagSet:]
  static bool isTagSet(const Object& tag);

  /// Returns whether the kept list contains at least one of the tags; false for none.
  /// [KesuPersonalizationIntelligence areAnyTagsSet:]
  static bool areAnyTagsSet(const Array& tags);

  /// Returns whether the kept list contains all of the tags; false for none.
  /// [KesuPersonalizationIntelligence areAllTagsSet:]
  static bool areAllTagsSet(const Array& tags);

 private:
  KesuPersonalizationIntelligence() = default;
};

}  // namespace kesu
