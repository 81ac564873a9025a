#pragma once

// Draws the layers of a frame with an SDL renderer.

#include <SDL.h>
#include <kesu/ui/Overlay.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <unordered_map>
#include <vector>

namespace kesu::host {

/// Makes a renderer draw in plain pixels during its own lifetime; then restores logical size, scale, viewport,
/// clipping, colour and blend mode.
class SdlPlainState {
 public:
  explicit SdlPlainState(SDL_Renderer* renderer) : renderer_(renderer) {
    SDL_GetRenderDrawBlendMode(renderer, &blendMode_);
    SDL_GetRenderDrawColor(renderer, &color_.r, &color_.g, &color_.b, &color_.a);
    SDL_RenderGetLogicalSize(renderer, &logicalWidth_, &logicalHeight_);
    SDL_RenderGetScale(renderer, &scaleX_, &scaleY_);
    SDL_RenderGetViewport(renderer, &viewport_);
    isClipped_ = SDL_RenderIsClipEnabled(renderer) == SDL_TRUE;
    SDL_RenderGetClipRect(renderer, &clip_);
    SDL_RenderSetClipRect(renderer, nullptr);
    SDL_RenderSetLogicalSize(renderer, 0, 0);  // Resets scale and viewport as well.
  }
  // In this order: viewport and clipping are in units of the scale.
  ~SdlPlainState() {
    if (logicalWidth_ > 0 && logicalHeight_ > 0) {
      SDL_RenderSetLogicalSize(renderer_, logicalWidth_, logicalHeight_);
    }
    SDL_RenderSetScale(renderer_, scaleX_, scaleY_);
    SDL_RenderSetViewport(renderer_, &viewport_);
    SDL_RenderSetClipRect(renderer_, isClipped_ ? &clip_ : nullptr);
    SDL_SetRenderDrawBlendMode(renderer_, blendMode_);
    SDL_SetRenderDrawColor(renderer_, color_.r, color_.g, color_.b, color_.a);
  }
  SdlPlainState(const SdlPlainState&) = delete;
  SdlPlainState& operator=(const SdlPlainState&) = delete;

 private:
  SDL_Renderer* renderer_;
  SDL_BlendMode blendMode_ = SDL_BLENDMODE_NONE;
  SDL_Color color_{};
  int logicalWidth_ = 0;
  int logicalHeight_ = 0;
  float scaleX_ = 1.0F;
  float scaleY_ = 1.0F;
  SDL_Rect viewport_{};
  bool isClipped_ = false;
  SDL_Rect clip_{};
};

/// Draws layers, with a texture for each that has pixels, and uploads only what changed. Main thread. The renderer must
/// outlive it.
class SdlLayers {
 public:
  /// Draws over the output of the renderer, always the same one, in pixels. Destroys textures of layers that are gone.
  /// A layer whose texture SDL cannot create is left out and tried again in the next frame.
  void draw(SDL_Renderer* renderer, const std::vector<FrameLayer>& layers) {
    forgetTexturesExceptOf(layers);
    const SdlPlainState plain(renderer);
    for (const FrameLayer& layer : layers) {
      if (layer.pixels != nullptr) {
        drawPixels(renderer, layer);
      } else {
        drawColor(renderer, layer);
      }
    }
  }

  /// Destroys all textures, because the renderer has lost them.
  void forget() { textures_.clear(); }

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

  static Uint8 byteOf(double fraction) {
    return static_cast<Uint8>(std::lround(std::clamp(fraction, 0.0, 1.0) * 255.0));
  }

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

  // SDL's software renderer has no premultiplied blending: it gets plain colours instead.
  static Texture makeTexture(SDL_Renderer* renderer, const FrameLayer& layer) {
    Texture made;
    made.handle.reset(SDL_CreateTexture(renderer, SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_STATIC, layer.pixelWidth,
                                        layer.pixelHeight));
    made.width = layer.pixelWidth;
    made.height = layer.pixelHeight;
    if (made.handle != nullptr) {
      SDL_SetTextureScaleMode(made.handle.get(), SDL_ScaleModeLinear);
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

  std::unordered_map<std::uint64_t, Texture> textures_;
  std::vector<std::uint32_t> plain_;
};

}  // namespace kesu::host
