#pragma once

#include <kesu/Export.h>
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

/// How a program comes by its module.
struct DrawingSource {
  DrawingModule* (*find)();  ///< Returns null without a module. Called once, by any thread.
  bool isLinked;             ///< find() takes no time: what draws is a part of the program, not a library to be loaded.
};

/// Returns the source of this program. Defined by drawing_cairo where that is linked in, else by
/// platform/linux/drawing.
const DrawingSource& drawingSource();

/// The entry of drawing_cairo as a library of its own. Returns null if it was built from another version.
extern "C" KESU_API DrawingModule* kesu_drawing_module(const char* version);

/// Returns the module; null without one, and until it is loaded. Any thread.
DrawingModule* drawingModule();

/// Loads the module unless that was done, and returns it; null without one. Any thread but the main one: the first
/// call takes some 10 ms, concurrent ones wait for it.
DrawingModule* loadDrawingModule();

/// Returns whether there may be a module that is not loaded yet. Any thread.
bool awaitsDrawingModule();

/// Replaces where the module comes from, and returns what it was. What was loaded is forgotten. For tests.
const DrawingSource* replaceDrawingSource(const DrawingSource* source);

}  // namespace kesu
