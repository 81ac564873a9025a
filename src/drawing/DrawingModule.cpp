#include "drawing/DrawingModule.h"

#include <atomic>

#include "drawing/FrameLayers.h"

namespace kesu {
namespace {

/// Initialised at the first use: texts may be measured by other initialisers, before main().
std::atomic<DrawingModule*>& current() {
  static std::atomic<DrawingModule*> module{linkedDrawingModule()};
  return module;
}

}  // namespace

DrawingModule* drawingModule() {
  return current().load(std::memory_order_acquire);
}

DrawingModule* replaceDrawingModule(DrawingModule* module) {
  return current().exchange(module, std::memory_order_acq_rel);
}

DecodedImage decodeImage(std::string_view bytes, const ImageLimits& limits) {
  DrawingModule* module = drawingModule();
  return module != nullptr ? module->decode(bytes, limits) : DecodedImage{};
}

std::optional<std::string> encodePng(const Image& image) {
  DrawingModule* module = drawingModule();
  return module != nullptr ? module->encodePng(image) : std::nullopt;
}

ImagePtr scaledImage(const Image& image, int width, int height) {
  DrawingModule* module = drawingModule();
  return module != nullptr ? module->scale(image, width, height) : nullptr;
}

void prepareFonts() {
  if (DrawingModule* module = drawingModule()) {
    module->prepareFonts();
  }
}

bool areFontsReady() {
  DrawingModule* module = drawingModule();
  return module != nullptr && module->areFontsReady();
}

void releaseFonts() {
  if (DrawingModule* module = drawingModule()) {
    module->releaseFonts();
  }
}

std::unique_ptr<Canvas> makeCanvas(const CanvasPixels& target) {
  DrawingModule* module = drawingModule();
  return module != nullptr ? module->makeCanvas(target) : nullptr;
}

void composeLayers(const std::vector<FrameLayer>& layers, std::uint32_t* pixels, int width, const PixelRect& area) {
  if (DrawingModule* module = drawingModule()) {
    module->compose(layers, pixels, width, area);
  }
}

void releaseDrawingCaches() {
  if (DrawingModule* module = drawingModule()) {
    module->releaseCaches();
  }
}

}  // namespace kesu
