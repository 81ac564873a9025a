#pragma once

#include <kesu/graphics/Font.h>

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <utility>

#include "drawing/DrawingModule.h"
#include "drawing_cairo/PangoText.h"
#include "foundation/Mutex.h"

struct _PangoContext;
struct _PangoFontMap;

namespace kesu {

/// Where fonts come from.
struct FontChoice {
  std::string directory;        ///< Searched recursively before all others; "" for none.
  bool usesSystemFonts = true;  ///< Also those of the system's font configuration.
};

/// Sets where fonts come from, and releases those that are loaded. The system's fonts by default. Any thread.
void setFontChoice(FontChoice choice);

/// A font configuration and what is loaded from it, separate from what the host does with fonts. One thread at a time.
class FontSet {
 public:
  explicit FontSet(const FontChoice& choice);
  ~FontSet();
  FontSet(const FontSet&) = delete;
  FontSet& operator=(const FontSet&) = delete;

  _PangoContext* context() const { return context_; }

 private:
  _PangoFontMap* map_ = nullptr;
  _PangoContext* context_ = nullptr;
};

/// The fonts of the process and the texts that were typeset last, so that measuring a text and drawing it, frame after
/// frame, typesets it once. Lock the mutex to use one of its texts.
class Typesetter {
 public:
  static Typesetter& shared();

  Mutex mutex;

  /// Returns the text typeset in this style and box, from the last ones where it is among them.
  std::shared_ptr<PangoText> typeset(std::string text, const TextStyle& style, Size box) KESU_REQUIRES(mutex);
  _PangoContext* context() KESU_REQUIRES(mutex);
  bool isReady() const KESU_REQUIRES(mutex) { return fonts_ != nullptr; }
  void release() KESU_REQUIRES(mutex);
  void choose(FontChoice choice) KESU_REQUIRES(mutex);

 private:
  struct Entry {
    std::string text;
    TextStyle style;
    Size box;
    std::shared_ptr<PangoText> layout;
  };
  void trim() KESU_REQUIRES(mutex);

  FontChoice choice_ KESU_GUARDED_BY(mutex);
  std::unique_ptr<FontSet> fonts_ KESU_GUARDED_BY(mutex);
  std::list<Entry> recent_ KESU_GUARDED_BY(mutex);  // The one used last comes first.
};

/// One use of a typeset text, which the typesetter may have released meanwhile. Any thread.
class TextHandle final : public TypesetText {
 public:
  explicit TextHandle(std::shared_ptr<PangoText> text) : text_(std::move(text)) {}
  ~TextHandle() override;
  TextHandle(const TextHandle&) = delete;
  TextHandle& operator=(const TextHandle&) = delete;

  Size size() const override { return text_->size; }
  int lineCount() const override { return static_cast<int>(text_->lines.size()); }
  /// Draws with the source of the context; the box is at its origin.
  void draw(_cairo* cairo) const;

 private:
  std::shared_ptr<PangoText> text_;
};

}  // namespace kesu
