#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace kesu {

/// What an observer is told.
struct Notification {
  std::string name;
  const void* object = nullptr;  ///< Who posted it; identity only, may be null.
  Dictionary userInfo;
};

/// Hands notifications to their observers, on the posting thread, in the order in which they were added.
///
/// Any thread. Observers may add and remove observers while being told; one that was removed is not told any more, one
/// that was added is told from the next notification on.
class KESU_API NotificationCenter {
 public:
  using Observer = std::function<void(const Notification&)>;
  using Token = std::uint64_t;

  NotificationCenter();
  ~NotificationCenter();

  /// The notification centre of the installed platform.
  static NotificationCenter& defaultCenter();

  /// Calls `observer` for every notification called `name` from `object` (null: from anybody). Returns what
  /// removeObserver() takes.
  Token addObserver(std::string_view name, const void* object, Observer observer);

  /// Ends an observation. Unknown tokens are ignored.
  void removeObserver(Token token);

  void post(std::string_view name, const void* object = nullptr, Dictionary userInfo = {});

 private:
  struct Registry;
  std::unique_ptr<Registry> registry_;
};

}  // namespace kesu
