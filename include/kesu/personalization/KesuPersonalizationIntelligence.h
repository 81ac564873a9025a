#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <functional>

namespace kesu {

/// The personalization tags that the service has assigned to this installation. The last list that had a tag in it is
/// kept in the user defaults, so that the questions below are answered without a network, also before
/// Kesu::initialize() and after another application key.
class KESU_API KesuPersonalizationIntelligence {
 public:
  /// Told the tags (an array of texts, as the service sent it), or nil when there are none or they could not be
  /// fetched.
  using TagsHandler = std::function<void(const Object& tags)>;

  /// [KesuPersonalizationIntelligence sharedInstance] The one object. It has no state of its own: its operations are
  /// those of the class. Any thread.
  static KesuPersonalizationIntelligence& sharedInstance();

  /// [KesuPersonalizationIntelligence getTags:] Fetches the tags, keeps them when there is at least one, and calls
  /// `completion` on the main thread with them. A fetch without tags leaves the kept list as it is. A reply that
  /// carries both an error and tags calls `completion` twice (first with nil), a complete reply without a body never.
  /// What `completion` refers to must live until it is called; it may be empty. Application::willTerminate() calls it
  /// with nil when it still waits; when a program just ends, it is not called any more. The request names the
  /// application and the installation as far as they are known: ask after Kesu::initialize(). Any thread; returns at
  /// once.
  static void getTags(TagsHandler completion);

  /// [KesuPersonalizationIntelligence isTagSet:] Whether the kept list holds the tag. False for a missing or empty one.
  /// Any thread.
  static bool isTagSet(const Object& tag);

  /// [KesuPersonalizationIntelligence areAnyTagsSet:] Whether the kept list holds at least one of these. False for no
  /// tags. Any thread.
  static bool areAnyTagsSet(const Array& tags);

  /// [KesuPersonalizationIntelligence areAllTagsSet:] Whether the kept list holds all of these. False for no tags. Any
  /// thread.
  static bool areAllTagsSet(const Array& tags);

 private:
  KesuPersonalizationIntelligence() = default;
};

}  // namespace kesu
