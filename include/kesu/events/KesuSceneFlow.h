#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Scenes inside the host's screens, such as the rooms of a game, and how long the user stayed in each.
///
/// Any thread. Nothing is sent: the scenes gather in the user defaults and travel with the next record of a state
/// change. It never throws and works before Kesu::initialize too.
class KESU_API KesuSceneFlow {
 public:
  KesuSceneFlow() = delete;

  /// [KesuSceneFlow postSecondsOnScene:forSeconds:] No event; appends the scene to the stored scene flow ("~uf"), the
  /// seconds with one decimal. Nothing happens when the name is missing, empty or no text (as UTF-8), or when the
  /// seconds are infinite or not-a-number: such an entry would make the whole flow unreadable.
  static void postSecondsOnScene(const Object& sceneName, double seconds);
};

}  // namespace kesu
