#pragma once

#include <kesu/graphics/Font.h>

#include <cstddef>
#include <list>
#include <memory>
#include <string>

#include "foundation/Mutex.h"
#include "graphics/TextLayout.h"

struct _PangoContext;
struct _PangoFontMap;

namespace kesu {

/// Where fonts come from.
struct FontChoice {
  std::string directory;        ///< Searched before all others, with what lies below it; "" for none.
  bool usesSystemFonts = true;  ///< Also those that the system's font configuration names.
};

/// Says where fonts come from; what is loaded is given back. Before that, the system's fonts are used. Any thread.
void setFontChoice(FontChoice choice);

/// A font configuration and what is loaded from it, apart from whatever the host does with fonts. Not for several
/// threads at a time.
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

/// The fonts of the process and the texts that were set last with them, so that measuring a text and drawing it, frame
/// after frame, sets it once. Whoever touches a text of it holds the mutex.
class TypeSetter {
 public:
  static TypeSetter& shared();

  Mutex mutex;

  /// The text set in this style and box; made when it is none of the last ones.
  std::shared_ptr<TextLayout::State> set(std::string text, const TextStyle& style, Size box) KESU_REQUIRES(mutex);
  _PangoContext* context() KESU_REQUIRES(mutex);
  bool isReady() const KESU_REQUIRES(mutex) { return fonts_ != nullptr; }
  void release() KESU_REQUIRES(mutex);
  void choose(FontChoice choice) KESU_REQUIRES(mutex);

 private:
  struct Entry {
    std::string text;
    TextStyle style;
    Size box;
    std::shared_ptr<TextLayout::State> layout;
  };
  void trim() KESU_REQUIRES(mutex);

  FontChoice choice_ KESU_GUARDED_BY(mutex);
  std::unique_ptr<FontSet> fonts_ KESU_GUARDED_BY(mutex);
  std::list<Entry> recent_ KESU_GUARDED_BY(mutex);  // The one used last comes first.
};

}  // namespace kesu
