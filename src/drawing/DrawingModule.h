#pragma once

#include <kesu/graphics/Frame.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/Canvas.h"
#include "drawing/Pictures.h"
#include "drawing/TextLayout.h"

namespace kesu {

/// A text that a module has typeset, for TextLayout. Used and destroyed on one thread at a time, any.
class TypesetText {
 public:
  TypesetText() = default;
  virtual ~TypesetText() = default;
  TypesetText(const TypesetText&) = delete;
  TypesetText& operator=(const TypesetText&) = delete;

  virtual Size size() const = 0;
  virtual int lineCount() const = 0;
};

/// What draws: everything that needs fonts, picture formats or a rasteriser. The functions of Pictures.h, TextLayout.h,
/// Canvas.h and FrameLayers.h forward to it and say what each operation does; without a module they do nothing. Never
/// destroyed. Any thread; never throws.
class DrawingModule {
 public:
  virtual DecodedImage decode(std::string_view bytes, const ImageLimits& limits) = 0;
  virtual std::optional<std::string> encodePng(const Image& image) = 0;
  virtual ImagePtr scale(const Image& image, int width, int height) = 0;

  virtual void prepareFonts() = 0;
  virtual bool areFontsReady() = 0;
  virtual void releaseFonts() = 0;
  virtual std::unique_ptr<TypesetText> typeset(std::string_view text, const TextStyle& style, Size box) = 0;

  virtual std::unique_ptr<Canvas> makeCanvas(const CanvasPixels& target) = 0;
  virtual void compose(const std::vector<FrameLayer>& layers, std::uint32_t* pixels, int width,
                       const PixelRect& area) = 0;
  virtual void releaseCaches() = 0;

 protected:
  DrawingModule() = default;
  ~DrawingModule() = default;
  DrawingModule(const DrawingModule&) = default;
  DrawingModule& operator=(const DrawingModule&) = default;
};

/// Returns the module; null without one. Any thread.
DrawingModule* drawingModule();

/// Replaces the module, null for none, and returns the one before. For tests.
DrawingModule* replaceDrawingModule(DrawingModule* module);

/// Returns the module that this program is linked with. Defined by whoever provides it.
DrawingModule* linkedDrawingModule();

}  // namespace kesu
