#include "graphics/TextLayout.h"

#include <string>

#include "graphics/FontSet.h"
#include "graphics/TypesetText.h"

namespace kesu {

void prepareFonts() {
  // Typesetting a text finds and opens the two fonts that nearly every other text uses.
  for (const char* name : {"HelveticaNeue-Light", "HelveticaNeue-Regular"}) {
    const TextLayout layout("Aa\u276E", TextStyle{.font = {name, 24.0}}, {});
  }
}

bool areFontsReady() {
  Typesetter& setter = Typesetter::shared();
  const MutexLock lock(setter.mutex);
  return setter.isReady();
}

void releaseFonts() {
  Typesetter& setter = Typesetter::shared();
  const MutexLock lock(setter.mutex);
  setter.release();
}

TextLayout::TextLayout(std::string_view text, const TextStyle& style, Size box) {
  std::string usable = typesettableText(text, style.lines);
  Typesetter& setter = Typesetter::shared();
  const MutexLock lock(setter.mutex);
  state_ = setter.typeset(std::move(usable), style, box);
}

TextLayout::~TextLayout() {
  if (state_ != nullptr) {
    const MutexLock lock(Typesetter::shared().mutex);
    state_.reset();
  }
}

TextLayout::TextLayout(TextLayout&& other) noexcept = default;

TextLayout& TextLayout::operator=(TextLayout&& other) noexcept {
  state_.swap(other.state_);
  return *this;
}

Size TextLayout::size() const {
  return state_ != nullptr ? state_->size : Size{};
}

int TextLayout::lineCount() const {
  return state_ != nullptr ? static_cast<int>(state_->lines.size()) : 0;
}

void TextLayout::draw(_cairo* cairo) const {
  if (state_ != nullptr) {
    const MutexLock lock(Typesetter::shared().mutex);
    state_->draw(cairo);
  }
}

double heightOfText(std::string_view text, const Font& font, double width) {
  return text.empty() ? 0.0 : TextLayout(text, TextStyle{.font = font}, {width, 0.0}).size().height;
}

}  // namespace kesu
