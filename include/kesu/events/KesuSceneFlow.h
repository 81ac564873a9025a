#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Scenes inside the host's screens, such as the rooms of a game, and how long the user stayed in each.
///
/// Any thread. Nothing is sent: the scenes gather in the user defaults, and the next record of a state change carries
/// them. Never throws; works before Kesu::initialize too.
class KESU_API KesuSceneFlow {
 public:
  KesuSceneFlow() = delete;

  /// Appends the scene to the stored scene flow ("~uf"), the seconds with one decimal; posts no event. Nothing happens
  /// when the name is missing, empty or no text (as UTF-8), or when the seconds are infinite or not-a-number: such an
  /// entry would make the whole flow unreadable. [KesuSceneFlow postSecondsOnScene:forSeconds:]
  static void postSecondsOnScene(const Object& sceneName, double seconds);
};

}  // namespace kesu
