#pragma once

#include <SDL.h>
#include <SDL_ttf.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Shapes.h"

namespace tv {

inline constexpr float kScreenWidth = 1920.0F;
inline constexpr float kScreenHeight = 1080.0F;

enum class Weight { Light, Regular, Medium, Bold };

struct TextStyle {
  Weight weight = Weight::Regular;
  float size = 28.0F;
  SDL_Color color{255, 255, 255, 255};
};

/// The colours of the app.
namespace palette {
inline constexpr Rgb kGround{0.035F, 0.041F, 0.063F};
inline constexpr SDL_Color kBack{9, 10, 16, 255};
inline constexpr SDL_Color kBright{250, 250, 252, 255};
inline constexpr SDL_Color kDim{176, 181, 196, 255};
inline constexpr SDL_Color kFaint{118, 124, 142, 255};
inline constexpr SDL_Color kGlass{255, 255, 255, 28};
inline constexpr SDL_Color kAccent{255, 176, 74, 255};
inline constexpr SDL_Color kAlert{240, 72, 84, 255};
}  // namespace palette

/// Returns the rectangle grown about its centre.
SDL_FRect grown(const SDL_FRect& rect, float zoom);

/// Draws with an SDL renderer on a screen of 1920 x 1080 points, whatever its pixels. Everything that takes time to
/// make (text, pictures, soft edges) is made once in the pixels that are needed and kept as a texture. Main thread;
/// destroy it before the renderer.
class Painter {
 public:
  using Maker = std::function<Picture(int width, int height)>;

  explicit Painter(SDL_Renderer& renderer);
  ~Painter();
  Painter(const Painter&) = delete;
  Painter& operator=(const Painter&) = delete;

  /// Destroys all textures, because the renderer has lost them.
  void forget() { textures_.clear(); }

  /// Begins a frame on the whole of the renderer's output.
  void begin();

  void fill(const SDL_FRect& rect, SDL_Color color);
  void roundRect(const SDL_FRect& rect, float radius, SDL_Color color, float zoom = 1.0F);
  /// Draws the shadow of a rectangle with round corners, `reach` points far.
  void shadow(const SDL_FRect& rect, float radius, float reach, float opacity, float zoom = 1.0F);
  void icon(Icon icon, const SDL_FRect& rect, SDL_Color color);

  /// A picture that is kept under `key`; `maker` paints it the first time, `sharpness` times as large as it is shown.
  void picture(const std::string& key, const SDL_FRect& rect, const Maker& maker, float sharpness = 1.0F,
               float opacity = 1.0F);

  /// One line with its left upper corner (or the middle of its upper edge) at this place.
  void text(const std::string& text, float x, float y, const TextStyle& style);
  void centeredText(const std::string& text, float x, float y, const TextStyle& style);
  /// Lines broken at blanks, at most `lines` of them. Returns the height.
  float paragraph(const std::string& text, float x, float y, float width, int lines, const TextStyle& style);
  float textWidth(const std::string& text, const TextStyle& style);

 private:
  struct Destroy {
    void operator()(SDL_Texture* texture) const { SDL_DestroyTexture(texture); }
    void operator()(TTF_Font* font) const { TTF_CloseFont(font); }
  };
  using TexturePtr = std::unique_ptr<SDL_Texture, Destroy>;

  SDL_Texture* keep(const std::string& key, const std::function<TexturePtr()>& make);
  TexturePtr textureOf(const Picture& picture);
  TTF_Font* font(const TextStyle& style);
  SDL_Texture* line(const std::string& text, const TextStyle& style);
  void mask(const std::string& key, const SDL_FRect& rect, float zoom, SDL_Color color, const Maker& maker);
  void copy(SDL_Texture* texture, const SDL_FRect& rect, SDL_Color color);
  SDL_FRect toPixels(const SDL_FRect& rect) const;

  SDL_Renderer& renderer_;
  std::map<std::string, TexturePtr> textures_;
  std::map<std::string, std::unique_ptr<TTF_Font, Destroy>> fonts_;
  int width_ = 0;
  int height_ = 0;
  float scale_ = 1.0F;  // Pixels per point.
  float left_ = 0.0F;   // Where the picture begins on screens of another shape, in pixels.
  float top_ = 0.0F;
};

}  // namespace tv
