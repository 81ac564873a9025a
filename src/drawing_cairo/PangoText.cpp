#include "drawing_cairo/PangoText.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>

#include "drawing_cairo/DrawingCaches.h"

namespace kesu {
namespace {

// Typesetting 32 kB (650 lines of a message) takes about 35 ms and 3 MB on a desktop computer, growing linearly.
constexpr std::size_t kLongestTextBytes = std::size_t{32} * 1024;
// More than fits into one line of the widest screen in any script.
constexpr std::size_t kLongestLineBytes = std::size_t{4} * 1024;
// The time for breaking one word grows with the square of its length: 64 kB without a space take 8 s.
constexpr int kLongestWord = 160;
constexpr int kLongestCluster = 480;  // Letters with their marks, which must not be torn apart: later than words.
constexpr int kLongestRow = 64;       // Of blanks or marks; no language stacks more than a few.
// The time for finding paragraphs grows with the square of their number: 16,000 take a second.
constexpr int kMostLineEnds = 1000;

constexpr gunichar kReplacement = 0xFFFD;
constexpr gunichar kZeroWidthSpace = 0x200B;
constexpr gunichar kZeroWidthJoiner = 0x200D;
constexpr gunichar kLineSeparator = 0x2028;
constexpr gunichar kParagraphSeparator = 0x2029;

constexpr double kLargestSize = 2000.0;    // Of a font: a letter is higher than the screen.
constexpr double kLargestBox = 1000000.0;  // In Pango's 1024ths of a point this still is an int.

void append(std::string& text, gunichar character) {
  char bytes[6];
  text.append(bytes, static_cast<std::size_t>(g_unichar_to_utf8(character, bytes)));
}

// Extracts one character from the front of `rest`, which is not empty; an invalid byte counts as one.
gunichar extractCharacter(std::string_view& rest) {
  const gunichar character =
      rest.front() == '\0' ? 0 : g_utf8_get_char_validated(rest.data(), static_cast<gssize>(rest.size()));
  const bool isValid = character < 0x110000;
  const auto length = isValid ? static_cast<std::size_t>(g_unichar_to_utf8(character, nullptr)) : 1;
  rest.remove_prefix(length);
  return isValid ? character : kReplacement;
}

bool endsLine(gunichar character) {
  return (character >= 0x0A && character <= 0x0D) || character == 0x85 || character == kLineSeparator ||
         character == kParagraphSeparator;
}

gunichar lineEndFor(int lines) {
  if (lines == 0) {
    return '\n';
  }
  return lines == 1 ? ' ' : kLineSeparator;  // A limit of lines counts within a paragraph.
}

bool isControl(gunichar character) {
  return (character < 0x20 && character != '\t') || (character >= 0x7F && character <= 0x9F);
}

bool joins(gunichar character) {
  return character == kZeroWidthJoiner || g_unichar_ismark(character) != FALSE ||
         g_unichar_iszerowidth(character) != FALSE;
}

// Breaks endless words between letters, not between a letter and its marks.
class WordBreaker {
 public:
  bool shouldBreakBefore(gunichar character) {
    const bool isInside = joins(character) || previous_ == kZeroWidthJoiner;
    const bool breaks = count_ >= (isInside ? kLongestCluster : kLongestWord);
    count_ = breaks || g_unichar_isspace(character) != FALSE ? 0 : count_ + 1;
    previous_ = character;
    return breaks;
  }

 private:
  int count_ = 0;
  gunichar previous_ = 0;
};

// Drops endless rows of spaces and marks, which take as long to typeset as endless words.
class RowLimit {
 public:
  bool isOver(gunichar character) {
    const bool isBlank = character == ' ' || character == '\t';
    blanks_ = isBlank ? blanks_ + 1 : 0;
    marks_ = joins(character) ? marks_ + 1 : 0;
    return blanks_ > kLongestRow || marks_ > kLongestRow;
  }

 private:
  int blanks_ = 0;
  int marks_ = 0;
};

struct Typeface {
  const char* family;
  PangoWeight weight;
};

Typeface typefaceFor(const std::string& name) {
  if (name == "HelveticaNeue-Light") {
    return {"Roboto", PANGO_WEIGHT_LIGHT};
  }
  const bool isStandard = name.empty() || name == "HelveticaNeue-Regular" || name == "HelveticaNeue";
  return {isStandard ? "Roboto" : name.c_str(), PANGO_WEIGHT_NORMAL};
}

double usableSize(double size) {
  return std::isfinite(size) && size > 0.0 ? std::min(size, kLargestSize) : 0.0;
}

bool isLimit(double length) {
  return length > 0.0 && std::isfinite(length);
}

int toPango(double points) {
  return static_cast<int>(std::lround(std::min(points, kLargestBox) * PANGO_SCALE));
}

double fromPango(int units) {
  return static_cast<double>(units) / PANGO_SCALE;
}

void setFont(PangoLayout* layout, const Font& font, double factor) {
  const Typeface typeface = typefaceFor(font.name);
  PangoFontDescription* description = pango_font_description_new();
  pango_font_description_set_family(description, typeface.family);
  pango_font_description_set_weight(description, typeface.weight);
  pango_font_description_set_absolute_size(description, std::max(1.0, usableSize(font.size) * factor * PANGO_SCALE));
  pango_layout_set_font_description(layout, description);
  pango_font_description_free(description);
}

void setRules(PangoLayout* layout, const TextStyle& style, Size box) {
  const bool isCutLine = style.hasNoEllipsis && style.lines == 1;
  pango_layout_set_wrap(layout, isCutLine ? PANGO_WRAP_CHAR : PANGO_WRAP_WORD_CHAR);
  pango_layout_set_width(layout, isLimit(box.width) ? toPango(box.width) : -1);
  if (!style.hasNoEllipsis && (style.lines > 0 || isLimit(box.height))) {
    pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    pango_layout_set_height(layout, style.lines > 0 ? -style.lines : std::max(1, toPango(box.height)));
  }
  PangoAttrList* attributes = pango_attr_list_new();
  pango_attr_list_insert(attributes, pango_attr_insert_hyphens_new(FALSE));
  pango_layout_set_attributes(layout, attributes);
  pango_attr_list_unref(attributes);
}

bool isRightToLeft(PangoLayoutLine* line) {
  return pango_layout_line_get_resolved_direction(line) == PANGO_DIRECTION_RTL;
}

// Which part of the free space of a line lies before it.
double shareBefore(TextAlignment alignment, PangoLayoutLine* line) {
  switch (alignment) {
    case TextAlignment::Natural:
      return isRightToLeft(line) ? 1.0 : 0.0;
    case TextAlignment::Left:
      return 0.0;
    case TextAlignment::Center:
      return 0.5;
    case TextAlignment::Right:
      return 1.0;
  }
  return 0.0;
}

// Without a font for them, some scripts report heights of thousands of kilometres, or negative ones.
void clampHeight(PangoRectangle& extent, double fontSize) {
  const int most = toPango(4.0 * fontSize + 4.0);
  if (extent.height < 0 || extent.height > most || extent.y > 0 || extent.y < -most) {
    extent.height = toPango(1.2 * fontSize);
    extent.y = -toPango(0.95 * fontSize);
  }
}

}  // namespace

std::string typesettableText(std::string_view text, int lines) {
  const std::size_t most =
      lines > 0 ? std::min(kLongestTextBytes, kLongestLineBytes * static_cast<std::size_t>(lines)) : kLongestTextBytes;
  std::string usable;
  usable.reserve(std::min(text.size(), most) + 8);
  WordBreaker breaker;
  RowLimit limit;
  int lineEnds = 0;
  while (!text.empty() && usable.size() < most && lineEnds < kMostLineEnds) {
    gunichar character = extractCharacter(text);
    if (character == '\r' && !text.empty() && text.front() == '\n') {
      continue;
    }
    if (endsLine(character)) {
      character = lineEndFor(lines);
      ++lineEnds;
    } else if (isControl(character)) {
      character = ' ';
    }
    if (limit.isOver(character)) {
      continue;
    }
    if (breaker.shouldBreakBefore(character)) {
      append(usable, kZeroWidthSpace);
    }
    append(usable, character);
  }
  return usable;
}

PangoText::PangoText(PangoContext* context, const std::string& text, const TextStyle& style, Size box)
    : layout_(pango_layout_new(context)) {
  if (text.empty() || usableSize(style.font.size) <= 0.0) {
    return;
  }
  setFont(layout_, style.font, 1.0);
  pango_layout_set_text(layout_, text.data(), static_cast<int>(text.size()));
  if (style.lines == 1 && style.minimumScaleFactor < 1.0 && isLimit(box.width)) {
    fitToWidth(style, box.width);
  }
  setRules(layout_, style, box);
  collectLines(style, box);
  align(style.alignment, isLimit(box.width) ? box.width : size.width);
  if (isLimit(box.height)) {
    size.height = std::min(size.height, box.height);
  }
}

PangoText::~PangoText() {
  g_object_unref(layout_);
}

// Called while the layout has no width limit, so that its size is that of the whole line. Advances do not shrink in
// proportion to the font, so a smaller line is measured again.
void PangoText::fitToWidth(const TextStyle& style, double width) {
  constexpr int kSteps = 6;             // Two suffice for most fonts.
  constexpr double kLeastStep = 0.995;  // Else the steps become ever smaller before the line fits.
  const double smallest = std::max(0.0, style.minimumScaleFactor);
  double factor = 1.0;
  for (int step = 0; step < kSteps && factor > smallest; ++step) {
    int natural = 0;
    pango_layout_get_size(layout_, &natural, nullptr);
    if (natural <= toPango(width)) {
      return;
    }
    const double share = width / fromPango(natural);
    factor = std::max(smallest, factor * (step == 0 ? share : std::min(share, kLeastStep)));
    setFont(layout_, style.font, factor);
  }
}

void PangoText::collectLines(const TextStyle& style, Size box) {
  const double widest = isLimit(box.width) ? box.width : kLargestBox;
  for (GSList* item = pango_layout_get_lines_readonly(layout_); item != nullptr; item = item->next) {
    auto* glyphs = static_cast<PangoLayoutLine*>(item->data);
    PangoRectangle extent;
    pango_layout_line_get_extents(glyphs, nullptr, &extent);
    clampHeight(extent, usableSize(style.font.size));
    const double height = fromPango(extent.height);
    const bool isOver = isLimit(box.height) && size.height + height > box.height + 0.5;
    if (!lines.empty() && (isOver || (style.lines > 0 && lines.size() == static_cast<std::size_t>(style.lines)))) {
      return;
    }
    const double width = std::clamp(fromPango(extent.width), 0.0, widest);
    lines.push_back({glyphs, 0.0, size.height - fromPango(extent.y), width, height});
    size.width = std::max(size.width, width);
    size.height += height;
  }
}

void PangoText::align(TextAlignment alignment, double width) {
  for (Line& line : lines) {
    line.x = (width - line.width) * shareBefore(alignment, line.glyphs);
  }
}

void PangoText::draw(cairo_t* cairo) const {
  const Rect clip = clipOf(cairo);
  for (const Line& line : lines) {
    // Accents may rise over their line, by less than its height.
    if (line.baseline + line.height >= clip.y && line.baseline - 2.0 * line.height <= clip.bottom()) {
      cairo_move_to(cairo, line.x, line.baseline);
      pango_cairo_show_layout_line(cairo, line.glyphs);
    }
  }
  cairo_new_path(cairo);
}

}  // namespace kesu
