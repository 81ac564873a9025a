#pragma once

#include <kesu/platform/BackgroundQueue.h>
#include <kesu/platform/Bundle.h>
#include <kesu/platform/UserDefaults.h>

#include <optional>
#include <string>
#include <string_view>

#include "device/KesuMetrics.h"

namespace kesu {

/// Reports that the operating system or the application has another version than at the last launch. The user-defaults
/// key of a version is the name of the event that reports its change.
class KesuVersionChangeEvent {
 public:
  KesuVersionChangeEvent(UserDefaults& defaults, BackgroundQueue& background, KesuMetrics& metrics, Bundle& bundle)
      : defaults_(defaults), background_(background), metrics_(metrics), bundle_(bundle) {}

  /// Compares both versions; called once per launch, on the launching thread. The background queue posts changes.
  void checkVersionChangeAndPost();

 private:
  void postVersionChangeWithEventName(std::string_view name, const std::optional<std::string>& newVersion);
  void remember(std::string_view name, const std::optional<std::string>& version);

  UserDefaults& defaults_;
  BackgroundQueue& background_;
  KesuMetrics& metrics_;
  Bundle& bundle_;
};

}  // namespace kesu
