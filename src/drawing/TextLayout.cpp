#include "drawing/TextLayout.h"

#include "drawing/DrawingModule.h"

namespace kesu {

TextLayout::TextLayout(std::string_view text, const TextStyle& style, Size box) {
  if (DrawingModule* module = drawingModule()) {
    typeset_ = module->typeset(text, style, box);
  }
}

TextLayout::~TextLayout() = default;

TextLayout::TextLayout(TextLayout&&) noexcept = default;

TextLayout& TextLayout::operator=(TextLayout&&) noexcept = default;

Size TextLayout::size() const {
  return typeset_ != nullptr ? typeset_->size() : Size{};
}

int TextLayout::lineCount() const {
  return typeset_ != nullptr ? typeset_->lineCount() : 0;
}

double heightOfText(std::string_view text, const Font& font, double width) {
  return text.empty() ? 0.0 : TextLayout(text, TextStyle{.font = font}, {width, 0.0}).size().height;
}

}  // namespace kesu
