#pragma once

#include <SDL.h>

#include <memory>
#include <string>

namespace tv {

/// What the app is shown on: a window, or a picture in memory where there is no screen. Main thread, one at a time.
/// Throws std::runtime_error with SDL's reason when there is no such thing.
class Display {
 public:
  enum class Kind { Window, FullScreen, OffScreen };

  /// In pixels; full screen takes the size of the screen.
  Display(Kind kind, int width, int height);
  ~Display();
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  SDL_Renderer& renderer() { return *renderer_; }

  /// Writes what was drawn last as a PNG file. Returns whether that worked.
  bool saveScreenshot(const std::string& path);

 private:
  struct Destroy {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
    void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
  };

  void openWindow(bool isFullScreen, int width, int height);
  void openSurface(int width, int height);

  std::unique_ptr<SDL_Window, Destroy> window_;
  std::unique_ptr<SDL_Surface, Destroy> surface_;
  std::unique_ptr<SDL_Renderer, Destroy> renderer_;
};

}  // namespace tv
