#include "Display.h"

#include <png.h>

#include <cstdint>
#include <stdexcept>
#include <vector>

namespace tv {
namespace {

[[noreturn]] void fail() {
  throw std::runtime_error(std::string("SDL: ") + SDL_GetError());
}

}  // namespace

Display::Display(Kind kind, int width, int height) {
  if (kind == Kind::OffScreen) {
    SDL_SetHint(SDL_HINT_VIDEODRIVER, "dummy");
  }
  if (SDL_Init(SDL_INIT_VIDEO | (kind == Kind::OffScreen ? 0U : SDL_INIT_GAMECONTROLLER)) != 0) {
    fail();
  }
  if (kind == Kind::OffScreen) {
    openSurface(width, height);
  } else {
    openWindow(kind == Kind::FullScreen, width, height);
  }
  if (renderer_ == nullptr) {
    fail();
  }
}

Display::~Display() {
  renderer_.reset();
  surface_.reset();
  window_.reset();
  SDL_Quit();
}

// Where there is no screen SDL shows windows nowhere: only who asked for that wants it.
void Display::openWindow(bool isFullScreen, int width, int height) {
  const std::string driver = SDL_GetCurrentVideoDriver();
  if (SDL_getenv("SDL_VIDEODRIVER") == nullptr && (driver == "offscreen" || driver == "dummy")) {
    throw std::runtime_error("there is no display; tv_app --script needs none");
  }
  const Uint32 flags =
      SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI | (isFullScreen ? Uint32{SDL_WINDOW_FULLSCREEN_DESKTOP} : 0U);
  window_.reset(SDL_CreateWindow("Example TV", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width, height, flags));
  if (window_ == nullptr) {
    fail();
  }
  renderer_.reset(SDL_CreateRenderer(window_.get(), -1, SDL_RENDERER_PRESENTVSYNC));
  SDL_FlushEvent(SDL_WINDOWEVENT);  // Choosing a renderer hides and shows the window: nobody went away.
  SDL_ShowCursor(isFullScreen ? SDL_DISABLE : SDL_ENABLE);
}

void Display::openSurface(int width, int height) {
  surface_.reset(SDL_CreateRGBSurfaceWithFormat(0, width, height, 32, SDL_PIXELFORMAT_ARGB8888));
  if (surface_ == nullptr) {
    fail();
  }
  renderer_.reset(SDL_CreateSoftwareRenderer(surface_.get()));
}

bool Display::saveScreenshot(const std::string& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.format = PNG_FORMAT_RGB;
  int width = 0;
  int height = 0;
  SDL_GetRendererOutputSize(renderer_.get(), &width, &height);
  image.width = static_cast<png_uint_32>(width);
  image.height = static_cast<png_uint_32>(height);
  std::vector<std::uint8_t> pixels(std::size_t{3} * image.width * image.height);
  return SDL_RenderReadPixels(renderer_.get(), nullptr, SDL_PIXELFORMAT_RGB24, pixels.data(), width * 3) == 0 &&
         png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, nullptr) != 0;
}

}  // namespace tv
