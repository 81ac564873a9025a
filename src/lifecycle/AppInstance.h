#pragma once

#include <kesu/platform/Random.h>
#include <kesu/platform/UserDefaults.h>

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "foundation/Mutex.h"

namespace kesu {

/// The identity of this installation: the application key, the two instance identifiers and the launch count. Set up
/// once on the main thread, read on any.
class AppInstance {
 public:
  /// The part that records carry. `id` is empty until the library is initialised.
  struct Identity {
    std::string appKey;
    std::string id;   ///< "kaid": 22 characters.
    std::string id2;  ///< "kaid2": 22 characters.
  };

  AppInstance(UserDefaults& defaults, Random& random) : defaults_(defaults), random_(random) {}

  /// Keeps the key; returns false, and keeps the first one, at a second call.
  bool setAppKey(const std::string& key);

  bool hasAppKey() const;

  /// Loads or creates the identifiers and counts the launch. A key other than that of the last run makes this a first
  /// launch: what belongs to the old key is cleared and both identifiers are replaced.
  void load();

  Identity identity() const;

  /// Returns whether load() was called: whether identity() says something.
  bool isLoaded() const { return isLoaded_.load(std::memory_order_acquire); }

  /// Returns whether this run is the first of the installation, or the first under another key.
  bool firstLaunch() const;

  // Owed to hosts and to the agreed interface; no caller inside the library, which counts for the service only.

  /// Returns how often the library was initialised in this installation, this time included.
  std::int64_t appLaunchCount() const;

 private:
  void clearKesuPreference();

  UserDefaults& defaults_;
  Random& random_;

  std::atomic<bool> isLoaded_{false};
  mutable Mutex mutex_;
  std::optional<std::string> appKey_ KESU_GUARDED_BY(mutex_);
  std::string id_ KESU_GUARDED_BY(mutex_);
  std::string id2_ KESU_GUARDED_BY(mutex_);
  bool firstLaunch_ KESU_GUARDED_BY(mutex_) = false;
  std::int64_t appLaunchCount_ KESU_GUARDED_BY(mutex_) = 0;
};

}  // namespace kesu
