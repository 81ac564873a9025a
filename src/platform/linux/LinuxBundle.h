#pragma once

#include <kesu/platform/Bundle.h>
#include <kesu/platform/LocaleService.h>

#include "foundation/Mutex.h"

namespace kesu {

/// Finds the full path of the running executable; "" when the system does not tell.
std::string executablePath();

/// The main bundle on Linux: a directory with Info.plist (XML), resources and localisations (*.lproj directories).
///
/// The information dictionary is Info.plist, overridden by these environment variables and, over both, by the host's
/// settings: KESU_OVERRIDE_SERVER as "KesuOverrideServer", KESU_MESSAGING_HOST as "KesuMessagingHost",
/// KESU_REACHABILITY_HOST as "KesuReachabilityHost", KESU_DEVMODE as "devmode". Empty texts count as not set. It is
/// read by the first call that needs it.
class LinuxBundle final : public Bundle {
 public:
  /// `directory` may be "": the executable's directory. `overrides` are the host's settings under Info.plist's keys.
  LinuxBundle(LocaleService& locale, const std::string& directory, Dictionary overrides = {});

  std::string path() override { return path_; }
  const Dictionary& info() override;
  bool hasInfo() override;
  std::optional<Data> resource(std::string_view name, std::string_view type, std::size_t limit) override;
  std::vector<std::string> preferredLocalizations() override;

 private:
  bool read() KESU_REQUIRES(mutex_);

  LocaleService& locale_;
  const std::string path_;
  const Dictionary overrides_;
  Mutex mutex_;
  bool wasRead_ KESU_GUARDED_BY(mutex_) = false;
  bool hasInfo_ KESU_GUARDED_BY(mutex_) = false;
  Dictionary info_;  // Written once under mutex_, constant afterwards.
};

}  // namespace kesu
