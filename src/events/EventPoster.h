#pragma once

#include <kesu/foundation/Value.h>

#include <string>

namespace kesu {

/// What the event classes need of the manager, so that they need not know it. Any thread.
class EventPoster {
 public:
  virtual ~EventPoster() = default;

  virtual bool isSDKInitialized() = 0;

  /// Appends an event's name to the stored event flow.
  virtual void updateEvent(const std::string& name) = 0;

  /// Appends a scene and the seconds spent on it to the stored scene flow. Not-a-number and infinities are left out.
  virtual void updateScreenFlowForScenes(const std::string& name, double seconds) = 0;

  /// Completes the record for its table and sends it, on the background queue.
  virtual void postAppEvent(Dictionary record) = 0;
  virtual void postAppEventToTableM(Dictionary record) = 0;
  virtual void postAppEventToTableU(Dictionary record) = 0;
  virtual void postActivationTrait(Dictionary record) = 0;

  /// The poster of this process, made at the first call.
  static EventPoster& shared();

  using Provider = EventPoster& (*)();

  /// Names who makes the poster, and returns who did so before (nullptr at first). The facade does so once.
  static Provider setProvider(Provider provider);
};

}  // namespace kesu
