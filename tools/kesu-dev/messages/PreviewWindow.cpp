#include "tools/kesu-dev/messages/PreviewWindow.h"

#ifdef KESU_DEV_HAS_SDL

#include <kesu/host/sdl.h>
#include <kesu/platform/MainLoop.h>

#include <memory>

namespace kesu::dev {
namespace {

constexpr double kPatienceSeconds = 10.0;  // For the popup to appear.

struct EndSdl {
  ~EndSdl() { SDL_Quit(); }
};

using SdlWindow = std::unique_ptr<SDL_Window, decltype(&SDL_DestroyWindow)>;
using SdlRenderer = std::unique_ptr<SDL_Renderer, decltype(&SDL_DestroyRenderer)>;

// Forwards events. Returns false when the window was closed, or Escape was pressed without a popup.
bool forwardEvents(host::SdlOverlay& overlay) {
  SDL_Event event;
  while (SDL_PollEvent(&event) != 0) {
    if (overlay.handle(event)) {
      continue;
    }
    if (event.type == SDL_QUIT || (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE)) {
      return false;
    }
  }
  return true;
}

void drawFrame(SDL_Renderer* renderer, host::SdlOverlay& overlay) {
  constexpr Uint32 kFrameMilliseconds = 16;  // 60 frames per second.
  MainLoop::shared().pump();
  SDL_SetRenderDrawColor(renderer, 24, 30, 46, 255);
  SDL_RenderClear(renderer);
  overlay.draw(renderer);
  SDL_RenderPresent(renderer);
  SDL_Delay(kFrameMilliseconds);
}

// Runs until the popup is closed. Returns false when it did not appear.
bool runUntilClosed(SDL_Renderer* renderer, host::SdlOverlay& overlay) {
  const Uint64 latest = SDL_GetTicks64() + static_cast<Uint64>(kPatienceSeconds * 1000.0);
  bool wasUp = false;
  while (forwardEvents(overlay)) {
    drawFrame(renderer, overlay);
    const bool isUp = overlay.overlay().isModal();
    if ((wasUp && !isUp) || (!wasUp && SDL_GetTicks64() > latest)) {
      return wasUp;
    }
    wasUp = wasUp || isUp;
  }
  return true;
}

}  // namespace

std::string runPreviewWindow(int width, int height, const std::function<void()>& show) {
  const EndSdl atEnd;
  if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_GAMECONTROLLER) != 0) {
    return std::string("there is no display (") + SDL_GetError() + "): -o FILE writes a picture";
  }
  const SdlWindow window(SDL_CreateWindow("kesu-dev preview", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width,
                                          height, SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI),
                         &SDL_DestroyWindow);
  const SdlRenderer renderer(window != nullptr ? SDL_CreateRenderer(window.get(), -1, 0) : nullptr,
                             &SDL_DestroyRenderer);
  if (renderer == nullptr) {
    return std::string("the window cannot be opened: ") + SDL_GetError();
  }
  host::SdlOverlay overlay(renderer.get());
  show();
  return runUntilClosed(renderer.get(), overlay) ? "" : "the popup did not appear";
}

}  // namespace kesu::dev

#else

namespace kesu::dev {

std::string runPreviewWindow(int, int, const std::function<void()>&) {
  return "this kesu-dev was built without SDL 2 and opens no window: -o FILE writes a picture";
}

}  // namespace kesu::dev

#endif
