#pragma once

#include <SDL.h>
#include <kesu/host/sdl.h>
#include <kesu/ui/ScreenScope.h>

#include <fstream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Mailbox.h"
#include "Painter.h"
#include "Screen.h"

namespace tv {

/// The app: a stack of screens, the library's popup over them, and the loop that drives both. Draws when something has
/// changed and sleeps in between. Main thread; the library must be initialised.
class TvApp : public Navigator {
 public:
  /// `stateFile`, unless empty, gets a line for every change of screen or focus.
  explicit TvApp(SDL_Renderer& renderer, const std::string& stateFile = "");
  ~TvApp() override;

  /// Runs until the user leaves.
  void run();
  /// Handles pending events, pumps the library's main loop, and draws if something has changed. Never waits.
  void step();

  /// Opens a show (example-tv://show/ID, example-tv://trailer/ID) or the settings (example-tv://settings). Returns
  /// false for other links.
  bool openLink(const std::string& url);

  /// Returns the screen and what is focused on it: Shelf: Night Train, or Popup "Title": Button while a message is
  /// shown.
  std::string focus() const;

  Mailbox& mailbox() { return mailbox_; }
  kesu::Overlay& overlay() { return overlay_.overlay(); }

  void showDetail(const Show& show) override;
  void showSettings() override;
  void showMessages() override;
  void goBack() override;
  void say(const std::string& text) override;
  std::int64_t unreadMessages() const override { return mailbox_.unread(); }

 private:
  Screen& screen() const { return *screens_.back(); }
  void messageAnswered(const kesu::KesuInAppStatus& status);
  void push(std::unique_ptr<Screen> screen);
  void enterScreen();
  void leaveScreen();
  void waitForWork();
  void handle(const SDL_Event& event);
  void handleWindow(Uint8 change);
  void setVisible(bool isVisible);
  void drawFrame();
  void drawToast();
  void noticeChanges();

  SDL_Renderer& renderer_;
  Painter painter_;
  kesu::host::SdlOverlay overlay_;
  Mailbox mailbox_;
  std::vector<std::unique_ptr<Screen>> screens_;
  std::optional<kesu::ScreenScope> tracked_;
  std::set<std::string> myList_;
  std::string toast_;
  Uint64 toastUntil_ = 0;  // In SDL's milliseconds.
  std::ofstream state_;
  std::string lastState_;
  Uint64 lastFrame_ = 0;  // In SDL's milliseconds.
  bool isRunning_ = true;
  bool isVisible_ = true;
  bool isStale_ = true;
  bool isMoving_ = false;
  bool isPopupUp_ = false;
};

}  // namespace tv
