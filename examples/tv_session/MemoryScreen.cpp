#include "MemoryScreen.h"

#include <png.h>

#include <cstdint>
#include <stdexcept>
#include <vector>

namespace tv {

MemoryScreen::MemoryScreen(int width, int height) {
  SDL_SetHint(SDL_HINT_VIDEODRIVER, "dummy");
  if (SDL_Init(SDL_INIT_VIDEO) == 0) {
    surface_.reset(SDL_CreateRGBSurfaceWithFormat(0, width, height, 32, SDL_PIXELFORMAT_ARGB8888));
    renderer_.reset(surface_ != nullptr ? SDL_CreateSoftwareRenderer(surface_.get()) : nullptr);
  }
  if (renderer_ == nullptr) {
    throw std::runtime_error(std::string("SDL: ") + SDL_GetError());
  }
}

MemoryScreen::~MemoryScreen() {
  renderer_.reset();
  surface_.reset();
  SDL_Quit();
}

bool MemoryScreen::saveScreenshot(const std::string& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.format = PNG_FORMAT_RGB;
  image.width = static_cast<png_uint_32>(surface_->w);
  image.height = static_cast<png_uint_32>(surface_->h);
  const int stride = surface_->w * 3;
  std::vector<std::uint8_t> pixels(std::size_t{3} * image.width * image.height);
  return SDL_RenderReadPixels(renderer_.get(), nullptr, SDL_PIXELFORMAT_RGB24, pixels.data(), stride) == 0 &&
         png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, nullptr) != 0;
}

}  // namespace tv
