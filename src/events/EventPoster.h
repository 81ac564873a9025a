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

  /// Appends a scene and the seconds spent on it to the stored scene flow. Ignores infinite seconds and not-a-number.
  virtual void updateScreenFlowForScenes(const std::string& name, double seconds) = 0;

  /// Takes an event with these attributes and this name ("~e"; an attribute of that key is replaced, or removed when
  /// there is no name), and appends the name to the event flow. What is taken is not lost any more.
  virtual void postAppEvent(const Attributes& attributes, const Object& name) = 0;
  virtual void postAppEventToTableM(const Attributes& attributes, const Object& name) = 0;

  /// Takes a record of the user table, or an activation that is reported as traits.
  virtual void postAppEventToTableU(const Attributes& attributes) = 0;
  virtual void postActivationTrait(const Attributes& attributes) = 0;

  /// Returns the poster of this process, made at the first call.
  static EventPoster& shared();

  using Provider = EventPoster& (*)();

  /// Sets the function that makes the poster; returns the one before, nullptr at first. The facade calls this once.
  static Provider setProvider(Provider provider);
};

}  // namespace kesu
