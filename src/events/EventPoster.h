#pragma once

#include <kesu/foundation/Value.h>

#include <string>

namespace kesu {

/// What the event classes use of the manager, which lies in a room above theirs. Any thread.
class EventPoster {
 public:
  virtual ~EventPoster() = default;

  /// Returns whether the library has its key.
  virtual bool isSDKInitialized() = 0;

  /// Appends an event's name to the stored event flow.
  virtual void updateEvent(const std::string& name) = 0;

  /// Appends a scene and the seconds spent on it to the stored scene flow. Ignores infinite seconds and not-a-number.
  virtual void updateScreenFlowForScenes(const std::string& name, double seconds) = 0;

  /// Completes the record for its table and sends it, on the background queue.
  virtual void postAppEvent(Dictionary record) = 0;
  virtual void postAppEventToTableM(Dictionary record) = 0;
  virtual void postAppEventToTableU(Dictionary record) = 0;
  virtual void postActivationTrait(Dictionary record) = 0;

  /// Returns the poster of this process, made at the first call.
  static EventPoster& shared();

  using Provider = EventPoster& (*)();

  /// Sets the function that makes the poster; returns the one before, nullptr at first. The facade calls this once.
  static Provider setProvider(Provider provider);
};

}  // namespace kesu
