#pragma once

#include <memory>
#include <string>

#include "Display.h"
#include "ScriptHost.h"
#include "TvApp.h"

namespace tv {

/// The commands of a script that need a screen. The app is made, on a picture in memory, by the first of them: scripts
/// without such commands never start SDL. Keep it until the script is done.
class ScreenScript {
 public:
  /// In pixels.
  ScreenScript(int width, int height, std::string stateFile);

  void addTo(ScriptHost& host);

  /// A link that a message opens. False while there is no screen.
  bool openLink(const std::string& url) { return app_ != nullptr && app_->openLink(url); }

  /// A line a command, for --help.
  static const char* commands();

 private:
  TvApp& app();
  void press(const std::string& button);
  void drawFor(double seconds);
  void saveScreenshot(const std::string& path);
  void printAccessibility();

  int width_;
  int height_;
  std::string stateFile_;
  std::unique_ptr<Display> display_;
  std::unique_ptr<TvApp> app_;
};

}  // namespace tv
