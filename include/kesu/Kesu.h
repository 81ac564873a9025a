#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <cstdint>

namespace kesu {

/// The entry of the library. A host calls initialize() once, early, on its main thread; from then on everything else
/// may be called. Nothing here waits for the network.
class KESU_API Kesu {
 public:
  /// [Kesu -init] Always throws InternalInconsistencyException: the library is set up with initialize().
  Kesu();

  /// [Kesu initialize:] Sets the library up with the application key that the service assigned, showing level-0 log
  /// lines only. Main thread, once a process. Throws InternalInconsistencyException for a missing or blank key and for
  /// a second call, which leaves the first key in force. A key other than last time's makes this a new installation.
  static void initialize(const Object& key);

  /// [Kesu initialize:withLogThrottling:] The same with a log threshold (see logThrottling).
  static void initialize(const Object& key, std::int64_t logThrottling);

  /// [Kesu logThrottling:] Sets the log threshold: lines of at most this level are written. 0 errors, 2 warnings too, 3
  /// all; a negative level shows all as well. Any thread.
  static void logThrottling(std::int64_t level);

  /// [Kesu sharedKesu] The shared object, made (with its observers) at the first call. Main thread.
  static Kesu& sharedKesu();

  /// [Kesu isSDKInitialized] Whether initialize() has succeeded. Any thread.
  static bool isSDKInitialized();

  /// [Kesu timerReference] Seconds since 2016-01-27 07:53:20 UTC, for KesuCustomEvent::postTimedWithEventName. Any
  /// thread.
  static double timerReference();

  /// [Kesu IsProductionMode] False exactly when "devmode" is "true", in any letter case. Any thread.
  static bool IsProductionMode();

 private:
  struct Shared {};
  explicit Kesu(Shared) {}
};

}  // namespace kesu
