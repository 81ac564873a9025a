#include "drawing/DrawingModule.h"

#include <atomic>

#include "drawing/FrameLayers.h"
#include "foundation/Mutex.h"

namespace kesu {
namespace {

struct State {
  std::atomic<const DrawingSource*> source{&drawingSource()};
  std::atomic<DrawingModule*> module{nullptr};
  std::atomic<bool> isFound{false};  // Or known to be missing.
  Mutex finding;
};

// Made at the first use, which may be before main(), and never destroyed.
State& state() {
  static auto& shared = *new State;
  return shared;
}

}  // namespace

DrawingModule* drawingModule() {
  State& now = state();
  return now.source.load()->isLinked ? loadDrawingModule() : now.module.load(std::memory_order_acquire);
}

DrawingModule* loadDrawingModule() {
  State& now = state();
  if (!now.isFound.load(std::memory_order_acquire)) {
    const MutexLock lock(now.finding);
    if (!now.isFound.load(std::memory_order_relaxed)) {
      now.module.store(now.source.load()->find(), std::memory_order_release);
      now.isFound.store(true, std::memory_order_release);
    }
  }
  return now.module.load(std::memory_order_acquire);
}

bool awaitsDrawingModule() {
  return !state().source.load()->isLinked && !state().isFound.load(std::memory_order_acquire);
}

const DrawingSource* replaceDrawingSource(const DrawingSource* source) {
  State& now = state();
  const MutexLock lock(now.finding);
  now.isFound.store(false);
  now.module.store(nullptr);
  return now.source.exchange(source);
}

DecodedImage decodeImage(std::string_view bytes, const ImageLimits& limits) {
  DrawingModule* module = loadDrawingModule();
  return module != nullptr ? module->decode(bytes, limits) : DecodedImage{};
}

std::optional<std::string> encodePng(const Image& image) {
  DrawingModule* module = loadDrawingModule();
  return module != nullptr ? module->encodePng(image) : std::nullopt;
}

ImagePtr scaledImage(const Image& image, int width, int height) {
  DrawingModule* module = drawingModule();
  return module != nullptr ? module->scale(image, width, height) : nullptr;
}

void prepareFonts() {
  if (DrawingModule* module = loadDrawingModule()) {
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
