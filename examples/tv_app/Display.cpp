#include "Display.h"

#include <stdexcept>
#include <string>

namespace tv {
namespace {

[[noreturn]] void fail() {
  throw std::runtime_error(std::string("SDL: ") + SDL_GetError());
}

}  // namespace

Display::Display(bool isFullScreen, int width, int height) {
  if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_GAMECONTROLLER) != 0) {
    fail();
  }
  // Without a display SDL shows windows nowhere: only who asked for that wants it.
  const std::string driver = SDL_GetCurrentVideoDriver();
  if (SDL_getenv("SDL_VIDEODRIVER") == nullptr && (driver == "offscreen" || driver == "dummy")) {
    throw std::runtime_error("there is no display; tv_session needs none");
  }
  const Uint32 flags =
      SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI | (isFullScreen ? Uint32{SDL_WINDOW_FULLSCREEN_DESKTOP} : 0U);
  window_.reset(SDL_CreateWindow("Example TV", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width, height, flags));
  renderer_.reset(window_ != nullptr ? SDL_CreateRenderer(window_.get(), -1, SDL_RENDERER_PRESENTVSYNC) : nullptr);
  if (renderer_ == nullptr) {
    fail();
  }
  SDL_FlushEvent(SDL_WINDOWEVENT);  // Choosing a renderer hides and shows the window, which is no pause of the app.
  SDL_ShowCursor(isFullScreen ? SDL_DISABLE : SDL_ENABLE);
}

Display::~Display() {
  renderer_.reset();
  window_.reset();
  SDL_Quit();
}

}  // namespace tv
