#pragma once

#include <SDL.h>

#include <memory>

namespace tv {

/// The window of the app. Main thread, one at a time. Throws std::runtime_error with SDL's reason when there is no
/// display.
class Display {
 public:
  /// In pixels; full screen takes the size of the screen.
  Display(bool isFullScreen, int width, int height);
  ~Display();
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  SDL_Renderer& renderer() { return *renderer_; }

 private:
  struct Destroy {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
    void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
  };

  std::unique_ptr<SDL_Window, Destroy> window_;
  std::unique_ptr<SDL_Renderer, Destroy> renderer_;
};

}  // namespace tv
