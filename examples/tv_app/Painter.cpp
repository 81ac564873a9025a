#include "Painter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace tv {
namespace {

constexpr std::size_t kMostTextures = 600;
constexpr float kLineSpacing = 1.42F;

const std::string& fontFile(Weight weight) {
  static const std::array<std::string, 4> names = {"Light", "Regular", "Medium", "Bold"};
  static std::array<std::string, 4> files;
  std::string& file = files.at(static_cast<std::size_t>(weight));
  const std::string name = "Roboto-" + names.at(static_cast<std::size_t>(weight)) + ".ttf";
  for (const char* folder : {"/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/",
                             "/usr/share/fonts/truetype/roboto/", "/usr/share/fonts/google-roboto/"}) {
    if (file.empty() && std::filesystem::exists(folder + name)) {
      file = folder + name;
    }
  }
  return file;
}

std::string sizeText(const SDL_FRect& rect) {
  return std::to_string(static_cast<int>(rect.w)) + "x" + std::to_string(static_cast<int>(rect.h));
}

}  // namespace

SDL_FRect grown(const SDL_FRect& rect, float zoom) {
  return {rect.x - rect.w * (zoom - 1.0F) / 2.0F, rect.y - rect.h * (zoom - 1.0F) / 2.0F, rect.w * zoom, rect.h * zoom};
}

Painter::Painter(SDL_Renderer& renderer) : renderer_(renderer) {
  if (TTF_Init() != 0) {
    throw std::runtime_error(std::string("SDL_ttf: ") + TTF_GetError());
  }
}

Painter::~Painter() {
  textures_.clear();
  fonts_.clear();
  TTF_Quit();
}

void Painter::begin() {
  int width = 0;
  int height = 0;
  SDL_GetRendererOutputSize(&renderer_, &width, &height);
  if (width != width_ || height != height_ || textures_.size() > kMostTextures) {
    textures_.clear();
    fonts_.clear();
  }
  width_ = width;
  height_ = height;
  scale_ = std::min(static_cast<float>(width) / kScreenWidth, static_cast<float>(height) / kScreenHeight);
  left_ = (static_cast<float>(width) - kScreenWidth * scale_) / 2.0F;
  top_ = (static_cast<float>(height) - kScreenHeight * scale_) / 2.0F;
  SDL_SetRenderDrawColor(&renderer_, palette::kBack.r, palette::kBack.g, palette::kBack.b, 255);
  SDL_RenderClear(&renderer_);
}

void Painter::fill(const SDL_FRect& rect, SDL_Color color) {
  const SDL_FRect pixels = toPixels(rect);
  SDL_SetRenderDrawBlendMode(&renderer_, SDL_BLENDMODE_BLEND);
  SDL_SetRenderDrawColor(&renderer_, color.r, color.g, color.b, color.a);
  SDL_RenderFillRectF(&renderer_, &pixels);
}

void Painter::roundRect(const SDL_FRect& rect, float radius, SDL_Color color, float zoom) {
  const std::string key = "round " + sizeText(rect) + " " + std::to_string(radius);
  mask(key, rect, zoom, color,
       [&](int width, int height) { return paintMask(width, height, roundedBox(radius * scale_)); });
}

void Painter::shadow(const SDL_FRect& rect, float radius, float reach, float opacity, float zoom) {
  const SDL_FRect outer{rect.x - reach, rect.y - reach / 2.0F, rect.w + 2.0F * reach, rect.h + 2.0F * reach};
  mask("shadow " + sizeText(outer), outer, zoom, {0, 0, 0, static_cast<Uint8>(opacity * 255.0F)},
       [&](int width, int height) {
         return paintMask(width, height, roundedBox((radius + reach) * scale_), 2.0F * reach * scale_);
       });
}

void Painter::icon(Icon icon, const SDL_FRect& rect, SDL_Color color) {
  mask("icon " + std::to_string(static_cast<int>(icon)) + " " + sizeText(rect), rect, 1.0F, color,
       [&](int width, int height) { return paintMask(width, height, iconShape(icon)); });
}

void Painter::mask(const std::string& key, const SDL_FRect& rect, float zoom, SDL_Color color, const Maker& maker) {
  const SDL_FRect pixels = toPixels(rect);
  SDL_Texture* texture = keep(key, [&] {
    return textureOf(maker(std::max(1, static_cast<int>(std::lround(pixels.w))),
                           std::max(1, static_cast<int>(std::lround(pixels.h)))));
  });
  copy(texture, toPixels(grown(rect, zoom)), color);
}

void Painter::picture(const std::string& key, const SDL_FRect& rect, const Maker& maker, float sharpness,
                      float opacity) {
  const SDL_FRect pixels = toPixels(rect);
  SDL_Texture* texture = keep(key, [&] {
    return textureOf(maker(std::max(1, static_cast<int>(pixels.w * sharpness)),
                           std::max(1, static_cast<int>(pixels.h * sharpness))));
  });
  copy(texture, pixels, {255, 255, 255, static_cast<Uint8>(std::clamp(opacity, 0.0F, 1.0F) * 255.0F)});
}

void Painter::text(const std::string& text, float x, float y, const TextStyle& style) {
  SDL_Texture* texture = line(text, style);
  if (texture == nullptr) {
    return;
  }
  int width = 0;
  int height = 0;
  SDL_QueryTexture(texture, nullptr, nullptr, &width, &height);
  const SDL_FRect corner = toPixels({x, y, 0.0F, 0.0F});
  // Whole pixels keep letters sharp.
  copy(texture, {std::round(corner.x), std::round(corner.y), static_cast<float>(width), static_cast<float>(height)},
       style.color);
}

void Painter::centeredText(const std::string& line, float x, float y, const TextStyle& style) {
  text(line, x - textWidth(line, style) / 2.0F, y, style);
}

float Painter::paragraph(const std::string& text, float x, float y, float width, int lines, const TextStyle& style) {
  std::istringstream words(text);
  std::vector<std::string> broken(1);
  for (std::string word; words >> word;) {
    const std::string longer = broken.back().empty() ? word : broken.back() + " " + word;
    if (textWidth(longer, style) <= width || broken.back().empty()) {
      broken.back() = longer;
    } else if (static_cast<int>(broken.size()) < lines) {
      broken.push_back(word);
    } else {
      broken.back() += " …";
      break;
    }
  }
  for (std::size_t i = 0; i < broken.size(); ++i) {
    this->text(broken[i], x, y + static_cast<float>(i) * style.size * kLineSpacing, style);
  }
  return static_cast<float>(broken.size()) * style.size * kLineSpacing;
}

float Painter::textWidth(const std::string& text, const TextStyle& style) {
  int width = 0;
  TTF_SizeUTF8(font(style), text.c_str(), &width, nullptr);
  return static_cast<float>(width) / scale_;
}

SDL_Texture* Painter::keep(const std::string& key, const std::function<TexturePtr()>& make) {
  TexturePtr& texture = textures_[key];
  if (texture == nullptr) {
    texture = make();
  }
  return texture.get();
}

Painter::TexturePtr Painter::textureOf(const Picture& picture) {
  TexturePtr texture(
      SDL_CreateTexture(&renderer_, SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_STATIC, picture.width, picture.height));
  SDL_UpdateTexture(texture.get(), nullptr, picture.pixels.data(), picture.width * 4);
  SDL_SetTextureBlendMode(texture.get(), SDL_BLENDMODE_BLEND);
  SDL_SetTextureScaleMode(texture.get(), SDL_ScaleModeLinear);
  return texture;
}

TTF_Font* Painter::font(const TextStyle& style) {
  const int size = std::max(1, static_cast<int>(std::lround(style.size * scale_)));
  auto& font = fonts_[std::to_string(size) + " " + std::to_string(static_cast<int>(style.weight))];
  if (font == nullptr) {
    font.reset(TTF_OpenFont(fontFile(style.weight).c_str(), size));
    if (font == nullptr) {
      throw std::runtime_error("the Roboto fonts are missing: install fonts-roboto-unhinted");
    }
    TTF_SetFontHinting(font.get(), TTF_HINTING_LIGHT);
  }
  return font.get();
}

SDL_Texture* Painter::line(const std::string& text, const TextStyle& style) {
  if (text.empty()) {
    return nullptr;
  }
  const std::string key =
      "text " + std::to_string(style.size) + " " + std::to_string(static_cast<int>(style.weight)) + " " + text;
  return keep(key, [&] {
    SDL_Surface* surface = TTF_RenderUTF8_Blended(font(style), text.c_str(), {255, 255, 255, 255});
    TexturePtr texture(SDL_CreateTextureFromSurface(&renderer_, surface));
    SDL_FreeSurface(surface);
    return texture;
  });
}

void Painter::copy(SDL_Texture* texture, const SDL_FRect& rect, SDL_Color color) {
  SDL_SetTextureColorMod(texture, color.r, color.g, color.b);
  SDL_SetTextureAlphaMod(texture, color.a);
  SDL_RenderCopyF(&renderer_, texture, nullptr, &rect);
}

SDL_FRect Painter::toPixels(const SDL_FRect& rect) const {
  return {left_ + rect.x * scale_, top_ + rect.y * scale_, rect.w * scale_, rect.h * scale_};
}

}  // namespace tv
