#include "uikit/render/Renderer.h"

#include <kesu/platform/Platform.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <utility>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "drawing/DrawingModule.h"
#include "drawing/FrameLayers.h"
#include "uikit/ViewDrawing.h"
#include "uikit/render/Compositor.h"
#include "uikit/render/Picture.h"
#include "uikit/render/Placement.h"
#include "uikit/render/ViewPainter.h"

namespace kesu {
namespace {

constexpr double kLargestSnapshotSide = 8192.0;  // As Overlay::setPixelSize().

enum class FrameKind { Layers, Flat, Snapshot };

struct Entry {
  std::weak_ptr<const View> view;
  std::uint64_t id = 0;
  std::uint64_t lastFrame = 0;
  Picture picture;
  PixelRect shownInLayers;  // Which part of the picture was in the last frame of layers; empty when none was.
  PixelRect shownFlat;      // And in the last flattened one.
};

/// Where a view lies, and what of it the views around leave visible.
struct Surroundings {
  Placement placement;
  double alpha = 1.0;
  Rect clip;  // In pixels of the screen.
};

// The allocator keeps freed pages for later, and would never return those of a popup of a few seconds.
void returnFreedPages() {
#if defined(__GLIBC__)
  malloc_trim(0);
#endif
}

bool isUpright(const Placement& placement, double scale) {
  return placement.scaleX == scale && placement.scaleY == scale;
}

Rect snapped(const Rect& rect) {
  const double left = std::round(rect.x);
  const double top = std::round(rect.y);
  return {left, top, std::round(rect.right()) - left, std::round(rect.bottom()) - top};
}

PixelRect wholeOf(const FrameLayer& layer) {
  return {0, 0, layer.pixelWidth, layer.pixelHeight};
}

// Crops a layer to the clip of the views around, and returns which part of the pixels is left. Whole pixels only: text
// must not be stretched by fractions of one.
PixelRect crop(FrameLayer& layer, const Rect& clip) {
  const Rect rect{layer.x, layer.y, layer.width, layer.height};
  const Rect visible = rect.intersected(clip);
  if (visible == rect) {
    return wholeOf(layer);
  }
  if (visible.isEmpty()) {
    layer.width = layer.height = 0.0;
    return {};
  }
  const double scaleX = layer.width / layer.pixelWidth;
  const double scaleY = layer.height / layer.pixelHeight;
  const PixelRect kept = intersected(touchedPixels({(visible.x - rect.x) / scaleX, (visible.y - rect.y) / scaleY,
                                                    visible.width / scaleX, visible.height / scaleY}),
                                     wholeOf(layer));
  layer.x += kept.x * scaleX;
  layer.y += kept.y * scaleY;
  layer.width = kept.width * scaleX;
  layer.height = kept.height * scaleY;
  layer.pixels += std::ptrdiff_t{kept.y} * layer.stride + kept.x;
  layer.pixelWidth = kept.width;
  layer.pixelHeight = kept.height;
  layer.damage = movedBy(intersected(layer.damage, kept), -kept.x, -kept.y);
  return kept;
}

}  // namespace

struct Renderer::State {
  const std::vector<FrameLayer>& build(Window& window, int pixelWidth, int pixelHeight, FrameKind kind);
  void addView(View& view, const Surroundings& around);
  void addInner(View& view, const Surroundings& inside);
  void addLayer(View& view, const Surroundings& inside);
  void addPicture(View& view, const Surroundings& inside, Entry& entry);
  void push(FrameLayer layer, const Rect& clip, Entry& entry);
  Entry& entryOf(View& view);
  void waitForModule();
  void releaseAll();
  void releaseWhenDone(const Window& window);

  std::unordered_map<const View*, Entry> entries;
  std::vector<FrameLayer> layers;
  Compositor compositor;
  std::uint64_t frame = 0;
  std::uint64_t lastId = 0;
  FrameKind kind = FrameKind::Layers;
  double scale = 1.0;
  Rect screen;
  bool holdsMemory = false;
  bool isModuleRequested = false;
  bool lacksModule = false;  // The last frame shows nothing for want of what draws it.
};

const std::vector<FrameLayer>& Renderer::State::build(Window& window, int pixelWidth, int pixelHeight,
                                                      FrameKind frameKind) {
  ++frame;
  kind = frameKind;
  lacksModule = false;
  layers.clear();
  scale = pixelHeight / kScreenHeight;
  screen = {0.0, 0.0, static_cast<double>(pixelWidth), static_cast<double>(pixelHeight)};
  const Placement points{scale, scale, std::round((pixelWidth - kScreenWidth * scale) / 2.0), 0.0};
  if (!window.isHidden() && ViewDrawing::presented(window).alpha > 0.0) {
    const Surroundings inside{points, ViewDrawing::presented(window).alpha, screen};
    addLayer(window, inside);
    addInner(window, inside);
  }
  waitForModule();
  std::erase_if(entries, [&](const auto& item) { return item.second.lastFrame != frame; });
  holdsMemory = holdsMemory || !layers.empty();
  return layers;
}

// Loading takes too long for a frame. Nothing is shown until then, rather than views without their texts.
void Renderer::State::waitForModule() {
  const bool awaits = awaitsDrawingModule();
  lacksModule = awaits && (lacksModule || (kind != FrameKind::Layers && !layers.empty()));
  if (!lacksModule) {
    return;
  }
  layers.clear();
  if (!std::exchange(isModuleRequested, true)) {
    Platform::current().imageWorker.post([] { loadDrawingModule(); });
  }
}

void Renderer::State::addView(View& view, const Surroundings& around) {
  const ViewGeometry& geometry = ViewDrawing::presented(view);
  const Surroundings inside{around.placement.of(geometry), around.alpha * geometry.alpha, around.clip};
  const bool hasPlace = inside.placement.scaleX != 0.0 && inside.placement.scaleY != 0.0;
  if (view.isHidden() || inside.alpha <= 0.0 || !hasPlace || inside.clip.isEmpty()) {
    return;
  }
  if (ViewDrawing::isComposited(view)) {
    addLayer(view, inside);
  }
  addInner(view, inside);
}

void Renderer::State::addInner(View& view, const Surroundings& inside) {
  Surroundings limited = inside;
  if (view.clipsToBounds()) {
    const Size& size = ViewDrawing::presented(view).size;
    limited.clip = limited.clip.intersected(snapped(inside.placement.onScreen({0.0, 0.0, size.width, size.height})));
  }
  for (View* inner : ViewDrawing::drawingOrder(view)) {
    addView(*inner, limited);
  }
}

Entry& Renderer::State::entryOf(View& view) {
  Entry& entry = entries[&view];
  const std::weak_ptr<const View> self = std::as_const(view).weak_from_this();
  const bool isSameView = !entry.view.owner_before(self) && !self.owner_before(entry.view);
  if (entry.id == 0 || !isSameView) {  // A new view may have the address of a destroyed one.
    entry = Entry{};
    entry.view = self;
    entry.id = ++lastId;
  }
  entry.lastFrame = frame;
  return entry;
}

void Renderer::State::addLayer(View& view, const Surroundings& inside) {
  Entry& entry = entryOf(view);
  if (!isPlainColor(view)) {
    addPicture(view, inside, entry);
    return;
  }
  const Size& size = ViewDrawing::presented(view).size;
  const Rect place = snapped(inside.placement.onScreen({0.0, 0.0, size.width, size.height})).intersected(inside.clip);
  if (view.backgroundColor().alpha > 0.0 && !place.isEmpty()) {
    FrameLayer layer;
    layer.id = entry.id;
    layer.x = place.x;
    layer.y = place.y;
    layer.width = place.width;
    layer.height = place.height;
    layer.alpha = inside.alpha;
    layer.color = view.backgroundColor();
    layers.push_back(layer);
  }
}

void Renderer::State::addPicture(View& view, const Surroundings& inside, Entry& entry) {
  Rect extent = ViewDrawing::pictureExtent(view);
  const Placement& placement = inside.placement;
  // Huge views are drawn only where they are on the screen; smaller ones whole, so that moving them draws nothing.
  if (extent.width * scale > 2.0 * screen.width || extent.height * scale > 2.0 * screen.height) {
    extent = extent.intersected(placement.fromScreen(screen));
  }
  if (extent.isEmpty()) {
    return;
  }
  if (awaitsDrawingModule()) {  // The view keeps its damage.
    lacksModule = true;
    return;
  }
  Picture& picture = entry.picture;
  picture.update(view, extent, scale);
  if (picture.pixels() == nullptr) {
    return;
  }
  const PixelRect& pixels = picture.place();
  const double factorX = placement.scaleX / scale;
  const double factorY = placement.scaleY / scale;
  FrameLayer layer;
  layer.id = entry.id;
  layer.alpha = inside.alpha;
  layer.pixels = picture.pixels();
  layer.pixelWidth = pixels.width;
  layer.pixelHeight = pixels.height;
  layer.stride = pixels.width;
  // Text is sharp only where its pixels coincide with those of the screen.
  const bool isPixelForPixel = isUpright(placement, scale);
  layer.x = (isPixelForPixel ? std::round(placement.x) : placement.x) + pixels.x * factorX;
  layer.y = (isPixelForPixel ? std::round(placement.y) : placement.y) + pixels.y * factorY;
  layer.width = pixels.width * factorX;
  layer.height = pixels.height * factorY;
  if (kind != FrameKind::Snapshot) {
    layer.damage = kind == FrameKind::Layers ? picture.extractLayerDamage() : picture.extractFlatDamage();
  }
  push(layer, inside.clip, entry);
}

// Damage outside of the visible part is in no frame: when another part is shown, all of it is damaged.
void Renderer::State::push(FrameLayer layer, const Rect& clip, Entry& entry) {
  const Rect rect{layer.x, layer.y, layer.width, layer.height};
  const PixelRect part = clip != screen && !rect.isEmpty() ? crop(layer, clip) : wholeOf(layer);
  const bool isSeen = layer.width > 0.0 && layer.height > 0.0 && !rect.intersected(screen).isEmpty();
  if (kind != FrameKind::Snapshot) {
    PixelRect& shown = kind == FrameKind::Layers ? entry.shownInLayers : entry.shownFlat;
    if (std::exchange(shown, isSeen ? part : PixelRect{}) != part) {
      layer.damage = wholeOf(layer);
    }
  }
  if (isSeen) {
    layers.push_back(layer);
  }
}

// A popup that has faded out may be shown again; one that left the window will not.
void Renderer::State::releaseWhenDone(const Window& window) {
  const bool isDone = layers.empty() && std::ranges::all_of(window.subviews(), &View::isHidden);
  if (holdsMemory && isDone) {
    releaseAll();
  }
}

void Renderer::State::releaseAll() {
  entries.clear();
  layers = {};
  releaseDrawingCaches();
  releaseFonts();
  returnFreedPages();
  holdsMemory = false;
}

Renderer::Renderer() : state_(std::make_unique<State>()) {}

Renderer::~Renderer() {
  if (state_->holdsMemory) {
    state_->releaseAll();
  }
}

const std::vector<FrameLayer>& Renderer::layers(Window& window, int pixelWidth, int pixelHeight) {
  state_->build(window, pixelWidth, pixelHeight, FrameKind::Layers);
  state_->releaseWhenDone(window);
  return state_->layers;
}

bool Renderer::lacksModule() const {
  return state_->lacksModule;
}

const FlatFrame& Renderer::flatten(Window& window, int pixelWidth, int pixelHeight) {
  const FlatFrame& frame = state_->compositor.compose(state_->build(window, pixelWidth, pixelHeight, FrameKind::Flat),
                                                      pixelWidth, pixelHeight);
  state_->releaseWhenDone(window);
  return frame;
}

ImagePtr Renderer::snapshot(Window& window, int pixelWidth, int pixelHeight) {
  if (pixelWidth <= 0 || pixelHeight <= 0) {
    return nullptr;
  }
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(pixelWidth) * static_cast<std::size_t>(pixelHeight));
  composeLayers(state_->build(window, pixelWidth, pixelHeight, FrameKind::Snapshot), pixels.data(), pixelWidth,
                {0, 0, pixelWidth, pixelHeight});
  return std::make_shared<const Image>(pixelWidth, pixelHeight, std::move(pixels));
}

ImagePtr viewToImage(const View& view) {
  const Size& size = ViewDrawing::presented(view).size;
  const double width = std::ceil(size.width);
  const double height = std::ceil(size.height);
  if (width < 1.0 || height < 1.0 || width > kLargestSnapshotSide || height > kLargestSnapshotSide) {
    return nullptr;
  }
  const int columns = static_cast<int>(width);
  const int rows = static_cast<int>(height);
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
  const auto canvas = makeCanvas({pixels.data(), columns, rows, columns});
  if (canvas == nullptr) {
    return nullptr;
  }
  paintView(*canvas, view, PaintScope::Everything);
  return std::make_shared<const Image>(columns, rows, std::move(pixels));
}

}  // namespace kesu
