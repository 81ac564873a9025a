#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace kesu {

/// What an observer receives.
struct Notification {
  std::string name;
  const void* object = nullptr;  ///< The poster: identity only, may be null.
  Dictionary userInfo;
};

/// Calls the observers of a notification synchronously on the posting thread, in the order in which they were added.
///
/// Any thread. An observer may add and remove observers: a removed one is not called any more, a new one is called from
/// the next notification on.
class KESU_API NotificationCenter {
 public:
  using Observer = std::function<void(const Notification&)>;
  using Token = std::uint64_t;

  NotificationCenter();
  ~NotificationCenter();

  /// Returns the notification centre of the installed platform.
  static NotificationCenter& defaultCenter();

  /// Calls `observer` for every notification called `name` from `object` (null: from any). Returns the token for
  /// removeObserver().
  Token addObserver(std::string_view name, const void* object, Observer observer);

  /// Removes an observer. Unknown tokens are ignored.
  void removeObserver(Token token);

  void post(std::string_view name, const void* object = nullptr, Dictionary userInfo = {});

 private:
  struct Registry;
  std::unique_ptr<Registry> registry_;
};

}  // namespace kesu
