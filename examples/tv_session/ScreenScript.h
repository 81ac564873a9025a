#pragma once

#include <memory>
#include <string>

#include "MemoryScreen.h"
#include "ScriptHost.h"
#include "tv_app/TvApp.h"

namespace tv {

/// The commands of a script that need a screen, of 1920 x 1080 pixels in memory. The first of them makes the app:
/// scripts without such commands never start SDL. Must outlive the script.
class ScreenScript {
 public:
  void addTo(ScriptHost& host);

  /// Opens a link of a message. Returns false while there is no screen.
  bool openLink(const std::string& url) { return app_ != nullptr && app_->openLink(url); }

 private:
  TvApp& app();
  void press(const std::string& button);
  void drawFor(double seconds);
  void saveScreenshot(const std::string& path);

  std::unique_ptr<MemoryScreen> screen_;
  std::unique_ptr<TvApp> app_;
};

}  // namespace tv
