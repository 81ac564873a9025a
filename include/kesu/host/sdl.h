#pragma once

// For hosts that draw with SDL 2.0.22 or later. Header only: the library itself links no toolkit. Two lines in the
// host's loop:
//
//   kesu::host::SdlOverlay overlay(renderer);
//   while (running) {
//     while (SDL_PollEvent(&event)) {
//       if (overlay.handle(event)) continue;   // consumed by the popup
//       ...
//     }
//     kesu::MainLoop::shared().pump();
//     ...                                       // the host draws its own picture
//     overlay.draw(renderer);                   // and the popup over it, if there is one
//     SDL_RenderPresent(renderer);
//   }

#include <SDL.h>
#include <kesu/host/SdlLayers.h>
#include <kesu/host/SdlRemote.h>
#include <kesu/ui/Overlay.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#if !SDL_VERSION_ATLEAST(2, 0, 22)
#error "kesu/host/sdl.h needs SDL 2.0.22 or later"
#endif

namespace kesu::host {

/// Shows the library's popup in an SDL renderer and forwards the remote to it. Main thread, that of the renderer, where
/// the host also pumps kesu::MainLoop. The renderer is not owned and must outlive it. One at a time, as its Overlay.
class SdlOverlay {
 public:
  explicit SdlOverlay(SDL_Renderer* renderer) : renderer_(renderer) { measure(); }

  /// Forwards an event; call it for all events of every window. Returns true if it was consumed, as all input is while
  /// the popup is up; the end of a press, click or touch that began before is left to the host. May run functions of
  /// the host, which may destroy this.
  bool handle(const SDL_Event& event) {
    switch (event.type) {
      case SDL_KEYDOWN:
        return began(keyOf(event), remoteButtonOf(event.key.keysym.sym), event.key.repeat != 0);
      case SDL_KEYUP:
        return ended(keyOf(event), remoteButtonOf(event.key.keysym.sym));
      case SDL_CONTROLLERBUTTONDOWN:
        return began(padButtonOf(event), controllerButton(event), false);
      case SDL_CONTROLLERBUTTONUP:
        return ended(padButtonOf(event), controllerButton(event));
      case SDL_JOYBUTTONDOWN:
        return began(joystickButtonOf(event), std::nullopt, false);
      case SDL_JOYBUTTONUP:
        return ended(joystickButtonOf(event), std::nullopt);
      case SDL_FINGERDOWN:
        return began({SDL_FINGERDOWN, event.tfinger.fingerId}, std::nullopt, false);
      case SDL_FINGERUP:
        return ended({SDL_FINGERDOWN, event.tfinger.fingerId}, std::nullopt);
      case SDL_MOUSEBUTTONDOWN:
        return began(mouseButtonOf(event), std::nullopt, false);
      case SDL_MOUSEBUTTONUP:
        return clicked(event);
      case SDL_WINDOWEVENT:
        return windowChanged(event.window);
      case SDL_RENDER_TARGETS_RESET:
      case SDL_RENDER_DEVICE_RESET:
        layers_.forget();
        return false;
      default:
        return isOtherInput(event.type) && overlay_.isModal();
    }
  }

  /// Draws the popup over the whole output of the renderer, always the same one. Restores the renderer's logical size,
  /// scale, viewport, clipping, colour and blend mode.
  void draw(SDL_Renderer* renderer) {
    renderer_ = renderer;
    measure();
    const std::weak_ptr<bool> alive = alive_;  // A callback of the popup may destroy this.
    const std::vector<FrameLayer>& layers = overlay_.layers(static_cast<double>(SDL_GetTicks64()) / 1000.0);
    if (!alive.expired()) {
      layers_.draw(renderer, layers);
    }
  }

  /// Returns whether the next draw() will differ, for hosts that draw on demand; see also
  /// overlay().setNeedsFrameCallback().
  bool needsFrame() const { return overlay_.needsFrame(); }

  Overlay& overlay() { return overlay_; }
  const Overlay& overlay() const { return overlay_; }

 private:
  /// What can be down: the type of the event with which it began, and its number of that type.
  using Input = std::pair<Uint32, std::int64_t>;

  static std::int64_t buttonOf(std::int64_t device, Uint8 button) { return device * 256 + button; }
  static Input keyOf(const SDL_Event& event) { return {SDL_KEYDOWN, event.key.keysym.sym}; }
  static Input padButtonOf(const SDL_Event& event) {
    return {SDL_CONTROLLERBUTTONDOWN, buttonOf(event.cbutton.which, event.cbutton.button)};
  }
  static Input joystickButtonOf(const SDL_Event& event) {
    return {SDL_JOYBUTTONDOWN, buttonOf(event.jbutton.which, event.jbutton.button)};
  }
  static Input mouseButtonOf(const SDL_Event& event) {
    return {SDL_MOUSEBUTTONDOWN, buttonOf(event.button.which, event.button.button)};
  }

  // Ignored by the popup, and consumed while it is up.
  static bool isOtherInput(Uint32 type) {
    switch (type) {
      case SDL_TEXTINPUT:
      case SDL_TEXTEDITING:
      case SDL_TEXTEDITING_EXT:
      case SDL_MOUSEMOTION:
      case SDL_MOUSEWHEEL:
      case SDL_JOYAXISMOTION:
      case SDL_JOYBALLMOTION:
      case SDL_JOYHATMOTION:
      case SDL_CONTROLLERAXISMOTION:
      case SDL_CONTROLLERTOUCHPADDOWN:
      case SDL_CONTROLLERTOUCHPADMOTION:
      case SDL_CONTROLLERTOUCHPADUP:
      case SDL_FINGERMOTION:
      case SDL_DOLLARGESTURE:
      case SDL_MULTIGESTURE:
        return true;
      default:
        return false;
    }
  }

  static std::optional<RemoteButton> controllerButton(const SDL_Event& event) {
    return remoteButtonOf(static_cast<SDL_GameControllerButton>(event.cbutton.button));
  }

  // A key that went down before the popup appeared goes up for the host, which saw it go down; its repeats until then
  // are consumed.
  bool began(const Input& key, std::optional<RemoteButton> button, bool isRepeat) {
    if (!overlay_.isModal()) {
      down_.erase(key);  // Its end was lost, with the focus of the window.
      return false;
    }
    if (isRepeat && down_.count(key) == 0) {
      return true;
    }
    const bool isArrow = button && *button <= RemoteButton::Right;
    down_.insert(key);
    if (button && (isArrow || !isRepeat)) {
      overlay_.press(*button, PressPhase::Began);
    }
    return true;
  }

  bool ended(const Input& key, std::optional<RemoteButton> button) {
    if (down_.erase(key) == 0) {
      return false;
    }
    if (button) {
      overlay_.press(*button, PressPhase::Ended);
    }
    return true;
  }

  bool clicked(const SDL_Event& event) {
    if (down_.erase(mouseButtonOf(event)) == 0) {
      return false;
    }
    if (event.button.button == SDL_BUTTON_LEFT) {
      const SDL_FPoint pixel = pixelOf(event.button);
      overlay_.tap(pixel.x, pixel.y);
    }
    return true;
  }

  // With a logical size SDL reports positions in its units, otherwise in those of the window.
  SDL_FPoint pixelOf(const SDL_MouseButtonEvent& event) const {
    SDL_FPoint place{static_cast<float>(event.x), static_cast<float>(event.y)};
    int logicalWidth = 0;
    SDL_RenderGetLogicalSize(renderer_, &logicalWidth, nullptr);
    if (logicalWidth == 0) {
      return {place.x * pixelsPerUnit_, place.y * pixelsPerUnit_};
    }
    SDL_Rect viewport{};
    SDL_FPoint scale{1.0F, 1.0F};
    SDL_RenderGetViewport(renderer_, &viewport);
    SDL_RenderGetScale(renderer_, &scale.x, &scale.y);
    return {(place.x + static_cast<float>(viewport.x)) * scale.x, (place.y + static_cast<float>(viewport.y)) * scale.y};
  }

  bool windowChanged(const SDL_WindowEvent& event) {
    if (event.event == SDL_WINDOWEVENT_FOCUS_LOST) {
      overlay_.cancelPresses();
    }
    return false;
  }

  void measure() {
    int width = 0;
    int height = 0;
    if (SDL_GetRendererOutputSize(renderer_, &width, &height) != 0 || width <= 0 || height <= 0) {
      return;
    }
    overlay_.setPixelSize(width, height);
    int units = 0;
    if (SDL_Window* window = SDL_RenderGetWindow(renderer_)) {
      SDL_GetWindowSize(window, &units, nullptr);
    }
    pixelsPerUnit_ = units > 0 ? static_cast<float>(width) / static_cast<float>(units) : 1.0F;
  }

  SDL_Renderer* renderer_;
  Overlay overlay_;
  SdlLayers layers_;
  std::set<Input> down_;
  float pixelsPerUnit_ = 1.0F;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace kesu::host
