#include <kesu/Version.h>
#include <kesu/graphics/Frame.h>

#include <memory>
#include <utility>

#include "drawing/DrawingModule.h"
#include "drawing_cairo/CairoCanvas.h"
#include "drawing_cairo/DrawingCaches.h"
#include "drawing_cairo/FontSet.h"
#include "drawing_cairo/ImageDecoder.h"
#include "drawing_cairo/ImageScaling.h"
#include "drawing_cairo/LayerComposer.h"
#include "drawing_cairo/PangoText.h"
#include "drawing_cairo/PngEncoder.h"

namespace kesu {
namespace {

class CairoDrawing final : public DrawingModule {
 public:
  DecodedImage decode(std::string_view bytes, const ImageLimits& limits) override {
    return decodePicture(bytes, limits);
  }
  std::optional<std::string> encodePng(const Image& image) override { return encodePicture(image); }
  ImagePtr scale(const Image& image, int width, int height) override { return scalePicture(image, width, height); }

  void prepareFonts() override;
  bool areFontsReady() override;
  void releaseFonts() override;
  std::unique_ptr<TypesetText> typeset(std::string_view text, const TextStyle& style, Size box) override;

  std::unique_ptr<Canvas> makeCanvas(const CanvasPixels& target) override { return makeCairoCanvas(target); }
  void compose(const std::vector<FrameLayer>& layers, std::uint32_t* pixels, int width,
               const PixelRect& area) override {
    paintLayers(layers, pixels, width, area);
  }
  void releaseCaches() override;
};

void CairoDrawing::prepareFonts() {
  // Typesetting a text finds and opens the two fonts that nearly every other text uses.
  for (const char* name : {"HelveticaNeue-Light", "HelveticaNeue-Regular"}) {
    typeset("Aa\u276E", TextStyle{.font = {name, 24.0}}, {});
  }
}

bool CairoDrawing::areFontsReady() {
  Typesetter& setter = Typesetter::shared();
  const MutexLock lock(setter.mutex);
  return setter.isReady();
}

void CairoDrawing::releaseFonts() {
  Typesetter& setter = Typesetter::shared();
  const MutexLock lock(setter.mutex);
  setter.release();
}

std::unique_ptr<TypesetText> CairoDrawing::typeset(std::string_view text, const TextStyle& style, Size box) {
  std::string usable = typesettableText(text, style.lines);
  Typesetter& setter = Typesetter::shared();
  const MutexLock lock(setter.mutex);
  return std::make_unique<TextHandle>(setter.typeset(std::move(usable), style, box));
}

void CairoDrawing::releaseCaches() {
  DrawingCaches& caches = DrawingCaches::shared();
  const MutexLock lock(caches.mutex);
  caches.release();
}

}  // namespace

DrawingModule* kesu_drawing_module(const char* version) {
  static CairoDrawing module;
  return version == std::string_view(KESU_VERSION) ? &module : nullptr;
}

const DrawingSource& drawingSource() {
  static constexpr DrawingSource kSource{[] { return kesu_drawing_module(KESU_VERSION); }, true};
  return kSource;
}

}  // namespace kesu
