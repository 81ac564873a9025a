#pragma once

#include <kesu/platform/Random.h>
#include <kesu/platform/UserDefaults.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "foundation/Mutex.h"

namespace kesu {

/// The identity of this installation: the application key, the two instance identifiers and the launch count. Set up
/// once on the main thread, read on any.
///
/// While the user defaults cannot be read, the identity is provisional. Once they are, that of the installation takes
/// its place; if there is none, the provisional one stays and this is the first launch.
class AppInstance {
 public:
  /// The part that records carry. `id` is empty until the library is initialised.
  struct Identity {
    std::string appKey;
    std::string id;   ///< "kaid": 22 characters.
    std::string id2;  ///< "kaid2": 22 characters.
  };

  AppInstance(UserDefaults& defaults, Random& random) : defaults_(defaults), random_(random) {}
  ~AppInstance();

  AppInstance(const AppInstance&) = delete;
  AppInstance& operator=(const AppInstance&) = delete;

  /// Keeps the key; returns false, and keeps the first one, at a second call.
  bool setAppKey(const std::string& key);

  /// Locks nothing, so that a forked child may ask.
  bool hasAppKey() const { return hasAppKey_.load(std::memory_order_acquire); }

  /// Loads or creates the identifiers and counts the launch. A key other than that of the last run makes this a first
  /// launch: what belongs to the old key is cleared and both identifiers are replaced.
  void load();

  Identity identity() const;

  /// Returns whether load() was called: whether identity() says something. Locks nothing.
  bool isLoaded() const { return isLoaded_.load(std::memory_order_acquire); }

  /// Calls `done` once it is known whether this is a first launch: inside this call, or later on the thread that read
  /// the user defaults. Never after destruction, which waits for a call that has begun. Once, after load().
  void whenSettled(std::function<void()> done);

  /// Returns whether this run is the first of the installation, or the first under another key; false as long as that
  /// is not known.
  bool firstLaunch() const;

  // Owed to hosts and to the agreed interface; no caller inside the library, which counts for the service only.

  /// Returns how often the library was initialised in this installation, this time included.
  std::int64_t appLaunchCount() const;

 private:
  /// What the user defaults keep of this object while it waits for them.
  struct Waiting {
    Mutex mutex;
    AppInstance* instance KESU_GUARDED_BY(mutex) = nullptr;
  };

  void loadProvisional() KESU_REQUIRES(mutex_);
  void settle() KESU_REQUIRES(mutex_);
  void settleLate();
  bool isProvisional(std::string_view key, const std::string& provisional) const;
  void clearKesuPreference();

  UserDefaults& defaults_;
  Random& random_;

  std::atomic<bool> isLoaded_{false};
  std::atomic<bool> hasAppKey_{false};
  const std::shared_ptr<Waiting> waiting_ = std::make_shared<Waiting>();
  mutable Mutex mutex_;
  std::optional<std::string> appKey_ KESU_GUARDED_BY(mutex_);
  std::string id_ KESU_GUARDED_BY(mutex_);
  std::string id2_ KESU_GUARDED_BY(mutex_);
  bool isSettled_ KESU_GUARDED_BY(mutex_) = false;
  bool firstLaunch_ KESU_GUARDED_BY(mutex_) = false;
  std::function<void()> whenSettled_ KESU_GUARDED_BY(mutex_);
  std::int64_t appLaunchCount_ KESU_GUARDED_BY(mutex_) = 0;
};

}  // namespace kesu
