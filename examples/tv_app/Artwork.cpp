#include "Artwork.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "Shapes.h"

namespace tv {
namespace {

constexpr int kRidges = 4;
constexpr float kHorizon = 0.56F;

Rgb mix(Rgb from, Rgb to, float part) {
  return {std::lerp(from.red, to.red, part), std::lerp(from.green, to.green, part),
          std::lerp(from.blue, to.blue, part)};
}

Rgb colorOf(std::uint32_t pixel) {
  const auto part = [&](int shift) { return static_cast<float>((pixel >> shift) & 255U) / 255.0F; };
  return {part(16), part(8), part(0)};
}

std::uint32_t hash(std::uint32_t number) {
  number = (number ^ (number >> 16)) * 0x7feb352dU;
  number = (number ^ (number >> 15)) * 0x846ca68bU;
  return number ^ (number >> 16);
}

float random(int place, std::uint32_t seed) {
  return static_cast<float>(hash(static_cast<std::uint32_t>(place) * 0x9e3779b9U + seed) & 0xffffU) / 65535.0F;
}

float smoothNoise(float x, std::uint32_t seed) {
  const int cell = static_cast<int>(std::floor(x));
  return std::lerp(random(cell, seed), random(cell + 1, seed), smoothStep(0.0F, 1.0F, x - static_cast<float>(cell)));
}

float fractal(float x, std::uint32_t seed, int octaves) {
  float sum = 0.0F;
  float weight = 0.5F;
  for (int octave = 0; octave < octaves; ++octave, weight *= 0.5F, x *= 2.1F) {
    sum += weight * smoothNoise(x, seed + static_cast<std::uint32_t>(octave));
  }
  return sum;
}

// How far the land reaches up above the foot of its ridge, in heights of the picture.
float elevation(Land land, float x, int ridge, std::uint32_t seed) {
  const float nearness = static_cast<float>(ridge) / kRidges;
  switch (land) {
    case Land::Mountains: {
      const float peaks = 1.0F - std::abs(2.0F * fractal(x * (1.6F + nearness * 1.5F), seed, 6) - 1.0F);
      return peaks * peaks * (0.36F - 0.2F * nearness);
    }
    case Land::Hills:
      return fractal(x * 1.8F, seed, 3) * 0.22F;
    case Land::Dunes: {
      const float wave = x * (1.1F + nearness) + random(ridge, seed) * 6.0F;
      return 0.12F * (1.0F - std::abs(std::sin(wave))) + 0.05F * smoothNoise(x * 2.0F, seed);
    }
    case Land::Forest: {
      const float trees = x * (46.0F - 26.0F * nearness);
      const int tree = static_cast<int>(std::floor(trees));
      const float tip = 1.0F - 2.0F * std::abs(trees - static_cast<float>(tree) - 0.5F);
      return fractal(x * 1.5F, seed, 3) * 0.16F + tip * (0.03F + 0.07F * nearness) * (0.5F + random(tree, seed + 9));
    }
    case Land::City: {
      const int block = static_cast<int>(std::floor(x * (13.0F - 6.0F * nearness)));
      return (0.08F + 0.34F * random(block, seed) * random(block, seed + 3)) * (1.0F - 0.25F * nearness);
    }
    case Land::Sea:
      return ridge == 0 ? 0.02F + 0.05F * fractal(x * 1.3F, seed, 4) : -1.0F;
  }
  return 0.0F;
}

/// Paints one picture; coordinates are heights of the picture, so that shapes keep their form at every aspect.
class ScenePainter {
 public:
  ScenePainter(const Scene& scene, int width, int height)
      : scene_(scene), height_(static_cast<float>(height)), aspect_(static_cast<float>(width) / height_) {
    for (int ridge = 0; ridge < kRidges; ++ridge) {
      for (int x = 0; x < width; ++x) {
        const float foot =
            kHorizon + 0.1F * static_cast<float>(ridge) + (isSea() ? 0.0F : 0.06F) + (hidesMotif(ridge) ? 0.1F : 0.0F);
        const auto seed = scene.seed * 7 + static_cast<std::uint32_t>(ridge) * 131;
        tops_[static_cast<std::size_t>(ridge)].push_back(
            foot - elevation(scene.land, static_cast<float>(x) / height_, ridge, seed));
      }
    }
  }

  Rgb at(int column, int row) const {
    const float x = static_cast<float>(column) / height_;
    const float y = static_cast<float>(row) / height_;
    Rgb color = isSea() && y > kHorizon ? water(x, y) : sky(x, y);
    for (int ridge = 0; ridge < kRidges; ++ridge) {
      if (ridge == kRidges - 1) {
        color = motif(color, x, y);
      }
      const float top = tops_[static_cast<std::size_t>(ridge)][static_cast<std::size_t>(column)];
      if (isSea() && (ridge > 0 || y > kHorizon)) {
        continue;
      }
      color = mix(color, land(x, y, top, ridge), std::clamp((y - top) * height_ + 0.5F, 0.0F, 1.0F));
    }
    return color;
  }

 private:
  // What stands in front of a bridge lies lower.
  bool hidesMotif(int ridge) const { return scene_.motif == Motif::Train && ridge == kRidges - 1; }
  bool isSea() const { return scene_.land == Land::Sea; }
  float cover(float distance) const { return std::clamp(0.5F - distance * height_, 0.0F, 1.0F); }

  Rgb sky(float x, float y) const {
    Rgb color = mix(skyTop_, skyBottom_, smoothStep(0.0F, kHorizon + 0.1F, y));
    if (scene_.hasStars && random(static_cast<int>(x * 300.0F) * 577 + static_cast<int>(y * 300.0F), 77) > 0.9975F) {
      color = mix(color, {1.0F, 1.0F, 1.0F}, 0.7F * (1.0F - y));
    }
    if (scene_.motif == Motif::Aurora) {
      color = aurora(color, x, y);
    }
    return scene_.motif == Motif::Planet ? planet(color, x, y) : sun(color, x, y);
  }

  Rgb sun(Rgb color, float x, float y) const {
    if (scene_.sun.radius <= 0.0F) {
      return color;
    }
    const float distance = std::hypot(x - scene_.sun.x * aspect_, y - scene_.sun.y) - scene_.sun.radius;
    const float glow = 0.55F * std::exp(-std::max(distance, 0.0F) * 5.0F);
    return mix(color, light_, std::max(glow, cover(distance)));
  }

  Rgb planet(Rgb color, float x, float y) const {
    const float dx = x - scene_.sun.x * aspect_;
    const float dy = y - scene_.sun.y;
    const float distance = std::hypot(dx, dy) - scene_.sun.radius;
    const float day = smoothStep(-0.9F, 0.8F, (-dx - dy) / scene_.sun.radius);
    const float bands = 0.75F + 0.25F * smoothNoise((dy + dx * 0.25F) * 42.0F, scene_.seed);
    color = mix(color, light_, 0.22F * std::exp(-std::max(distance, 0.0F) * 9.0F));
    const Rgb lit = mix({0.03F, 0.02F, 0.07F}, light_, day * bands);
    color = mix(color, lit, cover(distance));
    const float ring = std::hypot(dx + dy * 0.4F, (dy - dx * 0.22F) * 4.2F) - scene_.sun.radius * 1.65F;
    const bool isBehind = distance < 0.0F && dy < dx * 0.22F;
    return isBehind ? color : mix(color, light_, 0.55F * cover(std::abs(ring) - 0.022F));
  }

  Rgb aurora(Rgb color, float x, float y) const {
    for (int band = 0; band < 2; ++band) {
      const auto seed = scene_.seed + static_cast<std::uint32_t>(band) * 17;
      const float base = 0.30F + 0.12F * static_cast<float>(band) + 0.16F * (smoothNoise(x * 1.7F, seed) - 0.5F);
      const float rays = 0.35F + 0.65F * smoothNoise(x * 22.0F + y * 3.0F, seed + 5);
      const float fall = y < base ? std::exp((y - base) * 7.0F) : std::exp((base - y) * 38.0F);
      const Rgb tint = mix({0.55F, 0.35F, 0.95F}, light_, smoothStep(base - 0.3F, base, y));
      color = mix(color, tint, 0.75F * rays * fall);
    }
    return color;
  }

  Rgb water(float x, float y) const {
    const float depth = (y - kHorizon) / (1.0F - kHorizon);
    Rgb color = mix(mix(skyBottom_, near_, 0.35F), near_, smoothStep(0.0F, 0.9F, depth));
    const int line = static_cast<int>(std::sqrt(depth) * 60.0F);
    const float ripple =
        smoothNoise(x * (24.0F - 16.0F * depth) + random(line, 3) * 40.0F, static_cast<unsigned>(line));
    const float spread = 0.05F + scene_.sun.radius + 0.22F * depth;
    const float away = std::abs(x - scene_.sun.x * aspect_) / spread;
    return mix(color, light_, smoothStep(0.45F, 0.9F, ripple) * std::exp(-away * away) * (1.0F - 0.6F * depth));
  }

  Rgb land(float x, float y, float top, int ridge) const {
    const float nearness = static_cast<float>(ridge + 1) / kRidges;
    Rgb color = mix(mix(skyBottom_, near_, 0.35F), near_, nearness);
    color = mix(color, skyBottom_, 0.28F * (1.0F - nearness) * smoothStep(0.0F, 0.35F, y - top));
    if (scene_.land == Land::City && ridge > 0) {
      const int column = static_cast<int>(x * 90.0F);
      const int row = static_cast<int>(y * 60.0F);
      const bool isWindow =
          x * 90.0F - static_cast<float>(column) < 0.55F && y * 60.0F - static_cast<float>(row) < 0.5F;
      if (isWindow && y > top + 0.012F && random(column * 131 + row, scene_.seed) > 0.66F) {
        color = mix(color, light_, 0.35F + 0.5F * nearness);
      }
    }
    if (scene_.land == Land::Mountains && !scene_.hasStars && ridge < 2) {
      const float jags = 0.10F * smoothNoise(x * 26.0F, scene_.seed) + 0.04F * smoothNoise(x * 83.0F, scene_.seed + 1);
      const float snowLine = (ridge == 0 ? 0.35F : 0.45F) + jags;
      color = mix(color, {0.98F, 0.95F, 0.96F}, 0.85F * cover(y - snowLine));
    }
    return color;
  }

  Rgb motif(Rgb color, float x, float y) const {
    switch (scene_.motif) {
      case Motif::Train:
        return train(viaduct(color, x, y), x, y);
      case Motif::Lighthouse:
        return lighthouse(color, x, y);
      case Motif::None:
      case Motif::Aurora:
      case Motif::Planet:
        break;
    }
    return color;
  }

  Rgb viaduct(Rgb color, float x, float y) const {
    constexpr float kDeck = 0.66F;
    constexpr float kPier = 0.17F;
    const float middle = std::abs(std::fmod(x, kPier) - kPier / 2.0F);
    const float arch = y < kDeck + 0.1F ? std::hypot(middle, y - kDeck - 0.1F) - 0.068F : middle - 0.068F;
    const float stone = std::max(kDeck - y, -arch);
    const float height = smoothStep(0.95F, kDeck, y);
    return mix(color, mix(near_, skyBottom_, 0.08F + 0.3F * height), cover(stone));
  }

  Rgb train(Rgb color, float x, float y) const {
    const float end = 0.82F * aspect_;
    const float along = end - x;
    const float coach = std::fmod(along + 9.0F, 0.3F);
    const float body = boxDistance(coach - 0.15F, y - 0.632F, 0.145F, 0.024F, 0.01F);
    color = mix(color, near_, along > 0.0F ? cover(body) : 0.0F);
    const float pane = std::fmod(coach, 0.036F) - 0.018F;
    const bool isLit = along > 0.0F && coach > 0.03F && coach < 0.27F;
    color = mix(color, light_, isLit ? cover(boxDistance(pane, y - 0.627F, 0.011F, 0.009F, 0.003F)) : 0.0F);
    const float beam = std::max(std::abs(y - 0.635F) - 0.012F + along * 0.09F, along);
    return mix(color, light_, along < 0.0F ? 0.5F * std::exp(along * 5.0F) * cover(beam) : 0.0F);
  }

  Rgb lighthouse(Rgb color, float x, float y) const {
    const float dx = x - 0.8F * aspect_;
    const float up = kHorizon + 0.03F - y;
    const float lampY = up - 0.375F;
    const float beam = std::abs(lampY + dx * 0.12F) - 0.012F + dx * 0.10F;
    if (dx < 0.0F) {
      color = mix(color, light_, 0.45F * std::exp(dx * 1.3F) * smoothStep(0.02F, -0.05F, beam));
    }
    const float shore = kHorizon + 0.05F;
    const float hill = 0.09F * std::exp(-dx * dx * 14.0F) + 0.012F * fractal(x * 14.0F, 9, 3) - 0.015F;
    color = mix(color, near_, y < shore ? cover(shore - y - hill) : 0.0F);
    color = mix(color, near_, y < shore ? 0.0F : 0.6F * cover(y - shore - hill * 0.6F));  // Its reflection.
    const float tower = std::max({std::abs(dx) - 0.036F + up * 0.035F, -up, up - 0.36F});
    const bool isStripe = std::fmod(up + 1.0F, 0.14F) < 0.07F;
    color = mix(color, isStripe ? Rgb{0.86F, 0.83F, 0.80F} : Rgb{0.55F, 0.16F, 0.16F}, cover(tower));
    color = mix(color, light_, cover(boxDistance(dx, lampY, 0.018F, 0.02F, 0.002F)));
    return mix(color, near_, cover(boxDistance(dx, up - 0.405F, 0.026F, 0.012F, 0.008F)));
  }

  const Scene& scene_;
  Rgb skyTop_ = colorOf(scene_.skyTop);
  Rgb skyBottom_ = colorOf(scene_.skyBottom);
  Rgb light_ = colorOf(scene_.light);
  Rgb near_ = colorOf(scene_.near);
  float height_;
  float aspect_;
  std::array<std::vector<float>, kRidges> tops_;
};

std::uint32_t byteOf(float part) {
  return static_cast<std::uint32_t>(std::lround(std::clamp(part, 0.0F, 1.0F) * 255.0F));
}

// A pattern of half steps keeps long gradients from showing bands.
std::uint32_t opaque(Rgb color, int column, int row) {
  const float step = (static_cast<float>((column * 5 + row * 3) & 7) - 3.5F) / 8.0F / 255.0F;
  return 0xff000000U | byteOf(color.red + step) << 16 | byteOf(color.green + step) << 8 | byteOf(color.blue + step);
}

}  // namespace

Picture paintScene(const Scene& scene, int width, int height) {
  Picture picture{width, height, {}};
  const ScenePainter painter(scene, width, height);
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      picture.pixels.push_back(opaque(painter.at(column, row), column, row));
    }
  }
  return picture;
}

void roundCorners(Picture& picture, float radius) {
  const Picture mask = paintMask(picture.width, picture.height, roundedBox(radius));
  for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
    picture.pixels[i] &= mask.pixels[i] | 0x00ffffffU;
  }
}

void fadeInto(Picture& picture, Rgb color, float left, float bottom) {
  std::size_t next = 0;
  for (int row = 0; row < picture.height; ++row) {
    const float below = static_cast<float>(picture.height - row) / static_cast<float>(picture.height);
    for (int column = 0; column < picture.width; ++column, ++next) {
      const float across = static_cast<float>(column) / static_cast<float>(picture.width);
      const float kept = smoothStep(0.2F * left, left, across) * smoothStep(0.0F, bottom, below);
      picture.pixels[next] = opaque(mix(color, colorOf(picture.pixels[next]), kept), column, row);
    }
  }
}

}  // namespace tv
