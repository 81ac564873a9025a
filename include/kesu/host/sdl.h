#pragma once

// For hosts that draw with SDL 2. Header only: the library itself links no toolkit. Two lines in the host's loop:
//
//   kesu::host::SdlOverlay overlay(renderer);
//   while (running) {
//     while (SDL_PollEvent(&event)) {
//       if (overlay.handle(event)) continue;   // the popup took it
//       ...
//     }
//     kesu::MainLoop::shared().pump();
//     ...                                       // the host draws its own picture
//     overlay.draw(renderer);                   // and the popup over it, if there is one
//     SDL_RenderPresent(renderer);
//   }

#include <SDL.h>
#include <kesu/ui/Overlay.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kesu::host {

/// The button of the remote that a key stands for, or nothing.
inline std::optional<RemoteButton> remoteButtonOf(SDL_Keycode key) {
  switch (key) {
    case SDLK_UP:
      return RemoteButton::Up;
    case SDLK_DOWN:
      return RemoteButton::Down;
    case SDLK_LEFT:
      return RemoteButton::Left;
    case SDLK_RIGHT:
      return RemoteButton::Right;
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
    case SDLK_SELECT:
    case SDLK_SPACE:
      return RemoteButton::Select;
    case SDLK_ESCAPE:
    case SDLK_AC_BACK:
    case SDLK_MENU:
    case SDLK_BACKSPACE:
      return RemoteButton::Menu;
    case SDLK_AUDIOPLAY:
      return RemoteButton::PlayPause;
    default:
      return std::nullopt;
  }
}

/// The button of the remote that a game controller's button stands for, or nothing.
inline std::optional<RemoteButton> remoteButtonOf(SDL_GameControllerButton button) {
  switch (button) {
    case SDL_CONTROLLER_BUTTON_DPAD_UP:
      return RemoteButton::Up;
    case SDL_CONTROLLER_BUTTON_DPAD_DOWN:
      return RemoteButton::Down;
    case SDL_CONTROLLER_BUTTON_DPAD_LEFT:
      return RemoteButton::Left;
    case SDL_CONTROLLER_BUTTON_DPAD_RIGHT:
      return RemoteButton::Right;
    case SDL_CONTROLLER_BUTTON_A:
      return RemoteButton::Select;
    case SDL_CONTROLLER_BUTTON_B:
      return RemoteButton::Menu;
    case SDL_CONTROLLER_BUTTON_START:
      return RemoteButton::PlayPause;
    default:
      return std::nullopt;
  }
}

/// Shows the library's popup in an SDL renderer and gives it the remote. Main thread, that of the renderer; destroy it
/// before the renderer.
class SdlOverlay {
 public:
  explicit SdlOverlay(SDL_Renderer* renderer) { measure(renderer); }

  /// Hands an event on. True: the popup is up and took it, or it was for nobody while the popup is up.
  bool handle(const SDL_Event& event) {
    switch (event.type) {
      case SDL_KEYDOWN:
        return began(event.key.keysym.sym, remoteButtonOf(event.key.keysym.sym), event.key.repeat != 0);
      case SDL_KEYUP:
        return ended(event.key.keysym.sym, remoteButtonOf(event.key.keysym.sym));
      case SDL_CONTROLLERBUTTONDOWN:
        return began(controllerId(event), controllerButton(event), false);
      case SDL_CONTROLLERBUTTONUP:
        return ended(controllerId(event), controllerButton(event));
      case SDL_MOUSEBUTTONUP:
        return clicked(event.button);
      case SDL_WINDOWEVENT:
        return windowChanged(event.window);
      case SDL_RENDER_TARGETS_RESET:
      case SDL_RENDER_DEVICE_RESET:
        textures_.clear();
        return false;
      case SDL_TEXTINPUT:
      case SDL_TEXTEDITING:
      case SDL_MOUSEBUTTONDOWN:
      case SDL_MOUSEMOTION:
      case SDL_MOUSEWHEEL:
      case SDL_CONTROLLERAXISMOTION:
      case SDL_FINGERDOWN:
      case SDL_FINGERMOTION:
      case SDL_FINGERUP:
        return overlay_.isModal();
      default:
        return false;
    }
  }

  /// Draws the popup over what the renderer holds, and leaves the renderer's colour and blend mode as they were.
  void draw(SDL_Renderer* renderer) {
    measure(renderer);
    const std::vector<FrameLayer>& layers = overlay_.layers(static_cast<double>(SDL_GetTicks64()) / 1000.0);
    forgetTexturesExceptOf(layers);
    SDL_BlendMode blendMode = SDL_BLENDMODE_NONE;
    SDL_Color color{};
    SDL_GetRenderDrawBlendMode(renderer, &blendMode);
    SDL_GetRenderDrawColor(renderer, &color.r, &color.g, &color.b, &color.a);
    for (const FrameLayer& layer : layers) {
      if (layer.pixels != nullptr) {
        drawPixels(renderer, layer);
      } else {
        drawColor(renderer, layer);
      }
    }
    SDL_SetRenderDrawBlendMode(renderer, blendMode);
    SDL_SetRenderDrawColor(renderer, color.r, color.g, color.b, color.a);
  }

  /// Whether the next draw() will show something new: hosts that draw on demand ask this, or set
  /// overlay().setNeedsFrameCallback().
  bool needsFrame() const { return overlay_.needsFrame(); }

  Overlay& overlay() { return overlay_; }
  const Overlay& overlay() const { return overlay_; }

 private:
  struct DestroyTexture {
    void operator()(SDL_Texture* texture) const { SDL_DestroyTexture(texture); }
  };
  struct Texture {
    std::unique_ptr<SDL_Texture, DestroyTexture> handle;
    int width = 0;
    int height = 0;
    bool isPremultiplied = true;
  };

  // Far from every key code.
  static std::int64_t controllerId(const SDL_Event& event) {
    return (std::int64_t{1} << 40) + (std::int64_t{event.cbutton.which} << 8) + event.cbutton.button;
  }

  static std::optional<RemoteButton> controllerButton(const SDL_Event& event) {
    return remoteButtonOf(static_cast<SDL_GameControllerButton>(event.cbutton.button));
  }

  // A key that went down before the popup came goes up for the host, who saw it go down.
  bool began(std::int64_t key, std::optional<RemoteButton> button, bool isRepeat) {
    if (!overlay_.isModal()) {
      return false;
    }
    const bool isArrow = button && *button <= RemoteButton::Right;
    held_.insert(key);
    if (button && (isArrow || !isRepeat)) {
      overlay_.press(*button, PressPhase::Began);
    }
    return true;
  }

  bool ended(std::int64_t key, std::optional<RemoteButton> button) {
    if (held_.erase(key) == 0) {
      return false;
    }
    if (button) {
      overlay_.press(*button, PressPhase::Ended);
    }
    return true;
  }

  bool clicked(const SDL_MouseButtonEvent& event) {
    if (!overlay_.isModal()) {
      return false;
    }
    overlay_.tap(event.x * pixelsAUnit_, event.y * pixelsAUnit_);
    return true;
  }

  bool windowChanged(const SDL_WindowEvent& event) {
    if (event.event == SDL_WINDOWEVENT_FOCUS_LOST) {
      held_.clear();
      overlay_.cancelPresses();
    }
    return false;
  }

  void measure(SDL_Renderer* renderer) {
    int width = 0;
    int height = 0;
    if (SDL_GetRendererOutputSize(renderer, &width, &height) != 0 || width <= 0 || height <= 0) {
      return;
    }
    overlay_.setPixelSize(width, height);
    int units = 0;
    if (SDL_Window* window = SDL_RenderGetWindow(renderer)) {
      SDL_GetWindowSize(window, &units, nullptr);
    }
    pixelsAUnit_ = units > 0 ? static_cast<double>(width) / units : 1.0;
  }

  static Uint8 byteOf(double fraction) { return static_cast<Uint8>(std::clamp(fraction, 0.0, 1.0) * 255.0 + 0.5); }

  static SDL_FRect rectOf(const FrameLayer& layer) {
    return {static_cast<float>(layer.x), static_cast<float>(layer.y), static_cast<float>(layer.width),
            static_cast<float>(layer.height)};
  }

  static void drawColor(SDL_Renderer* renderer, const FrameLayer& layer) {
    SDL_SetRenderDrawBlendMode(renderer, SDL_BLENDMODE_BLEND);
    SDL_SetRenderDrawColor(renderer, byteOf(layer.color.red), byteOf(layer.color.green), byteOf(layer.color.blue),
                           byteOf(layer.color.alpha * layer.alpha));
    const SDL_FRect rect = rectOf(layer);
    SDL_RenderFillRectF(renderer, &rect);
  }

  void drawPixels(SDL_Renderer* renderer, const FrameLayer& layer) {
    Texture& texture = textures_[layer.id];
    PixelRect changed = layer.damage;
    if (texture.handle == nullptr || texture.width != layer.pixelWidth || texture.height != layer.pixelHeight) {
      texture = makeTexture(renderer, layer);
      changed = {0, 0, layer.pixelWidth, layer.pixelHeight};
    }
    if (texture.handle == nullptr) {
      return;
    }
    upload(texture, layer, changed);
    const Uint8 alpha = byteOf(layer.alpha);
    SDL_SetTextureAlphaMod(texture.handle.get(), alpha);
    const Uint8 shade = texture.isPremultiplied ? alpha : Uint8{255};
    SDL_SetTextureColorMod(texture.handle.get(), shade, shade, shade);
    const SDL_FRect rect = rectOf(layer);
    SDL_RenderCopyF(renderer, texture.handle.get(), nullptr, &rect);
  }

  // SDL's software renderer knows no premultiplied blending: it gets plain colours instead.
  static Texture makeTexture(SDL_Renderer* renderer, const FrameLayer& layer) {
    Texture made;
    made.handle.reset(SDL_CreateTexture(renderer, SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_STATIC, layer.pixelWidth,
                                        layer.pixelHeight));
    made.width = layer.pixelWidth;
    made.height = layer.pixelHeight;
    if (made.handle != nullptr) {
      const SDL_BlendMode premultiplied =
          SDL_ComposeCustomBlendMode(SDL_BLENDFACTOR_ONE, SDL_BLENDFACTOR_ONE_MINUS_SRC_ALPHA, SDL_BLENDOPERATION_ADD,
                                     SDL_BLENDFACTOR_ONE, SDL_BLENDFACTOR_ONE_MINUS_SRC_ALPHA, SDL_BLENDOPERATION_ADD);
      made.isPremultiplied = SDL_SetTextureBlendMode(made.handle.get(), premultiplied) == 0;
      if (!made.isPremultiplied) {
        SDL_SetTextureBlendMode(made.handle.get(), SDL_BLENDMODE_BLEND);
      }
    }
    return made;
  }

  void upload(const Texture& texture, const FrameLayer& layer, const PixelRect& changed) {
    if (changed.isEmpty()) {
      return;
    }
    const SDL_Rect where{changed.x, changed.y, changed.width, changed.height};
    const std::uint32_t* first = layer.pixels + std::ptrdiff_t{changed.y} * layer.stride + changed.x;
    if (texture.isPremultiplied) {
      SDL_UpdateTexture(texture.handle.get(), &where, first, layer.stride * 4);
      return;
    }
    plain_.resize(static_cast<std::size_t>(changed.width) * static_cast<std::size_t>(changed.height));
    std::size_t next = 0;
    for (int row = 0; row < changed.height; ++row) {
      for (int column = 0; column < changed.width; ++column) {
        plain_[next++] = withoutAlpha(first[std::ptrdiff_t{row} * layer.stride + column]);
      }
    }
    SDL_UpdateTexture(texture.handle.get(), &where, plain_.data(), changed.width * 4);
  }

  static std::uint32_t withoutAlpha(std::uint32_t pixel) {
    const std::uint32_t alpha = pixel >> 24;
    if (alpha == 0 || alpha == 255) {
      return pixel;
    }
    const auto channel = [&](int shift) {
      return std::min<std::uint32_t>(255, (((pixel >> shift) & 255) * 255 + alpha / 2) / alpha) << shift;
    };
    return (alpha << 24) | channel(16) | channel(8) | channel(0);
  }

  void forgetTexturesExceptOf(const std::vector<FrameLayer>& layers) {
    for (auto texture = textures_.begin(); texture != textures_.end();) {
      const bool isShown = std::any_of(layers.begin(), layers.end(),
                                       [&](const FrameLayer& layer) { return layer.id == texture->first; });
      texture = isShown ? std::next(texture) : textures_.erase(texture);
    }
  }

  Overlay overlay_;
  std::unordered_map<std::uint64_t, Texture> textures_;
  std::set<std::int64_t> held_;
  std::vector<std::uint32_t> plain_;
  double pixelsAUnit_ = 1.0;
};

}  // namespace kesu::host
