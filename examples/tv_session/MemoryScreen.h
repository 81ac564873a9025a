#pragma once

#include <SDL.h>

#include <memory>
#include <string>

namespace tv {

/// A screen in memory that SDL draws into. Main thread. Throws std::runtime_error with SDL's reason when there is none.
class MemoryScreen {
 public:
  /// In pixels.
  MemoryScreen(int width, int height);
  ~MemoryScreen();
  MemoryScreen(const MemoryScreen&) = delete;
  MemoryScreen& operator=(const MemoryScreen&) = delete;

  SDL_Renderer& renderer() { return *renderer_; }

  /// Writes what was drawn last as a PNG file. Returns whether that worked.
  bool saveScreenshot(const std::string& path);

 private:
  struct Destroy {
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
    void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
  };

  std::unique_ptr<SDL_Surface, Destroy> surface_;
  std::unique_ptr<SDL_Renderer, Destroy> renderer_;
};

}  // namespace tv
