#include "drawing_cairo/FontSet.h"

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace kesu {
namespace {

constexpr std::size_t kMostRecentTexts = 48;  // A message with its buttons has some 20; two while one slides out.
constexpr std::size_t kMostRecentBytes = std::size_t{96} * 1024;  // About 5 MB as glyphs.

std::string escapedForXml(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

void addDirectory(FcConfig* config, std::string_view path) {
  const std::string xml =
      "<fontconfig><dir>" + escapedForXml(path) + "</dir><cachedir prefix=\"xdg\">fontconfig</cachedir></fontconfig>";
  FcConfigParseAndLoadFromMemory(config, reinterpret_cast<const FcChar8*>(xml.c_str()), FcFalse);
}

// Of two fonts with the same name fontconfig takes the first, so the host's directory is added first.
FcConfig* loadConfiguration(const FontChoice& choice) {
  FcConfig* config = FcConfigCreate();
  if (!choice.directory.empty()) {
    addDirectory(config, choice.directory);
  }
  if (choice.usesSystemFonts && FcConfigParseAndLoad(config, nullptr, FcTrue) == FcFalse) {
    addDirectory(config, "/usr/share/fonts");
  }
  FcConfigBuildFonts(config);
  return config;
}

// Texts are laid out in points and drawn at any scale: nothing may be rounded to the pixels of one of them.
void avoidRounding(PangoContext* context) {
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  pango_cairo_context_set_font_options(context, options);
  cairo_font_options_destroy(options);
  pango_context_set_round_glyph_positions(context, FALSE);
}

}  // namespace

FontSet::FontSet(const FontChoice& choice) : map_(pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT)) {
  FcConfig* config = loadConfiguration(choice);
  pango_fc_font_map_set_config(reinterpret_cast<PangoFcFontMap*>(map_), config);
  FcConfigDestroy(config);
  context_ = pango_font_map_create_context(map_);
  avoidRounding(context_);
}

// A font map that is destroyed with its configuration leaks that.
FontSet::~FontSet() {
  pango_fc_font_map_set_config(reinterpret_cast<PangoFcFontMap*>(map_), nullptr);
  g_object_unref(context_);
  g_object_unref(map_);
}

Typesetter& Typesetter::shared() {
  static auto& shared = *new Typesetter;  // Never destroyed: threads may still draw while the process ends.
  return shared;
}

_PangoContext* Typesetter::context() {
  if (fonts_ == nullptr) {
    fonts_ = std::make_unique<FontSet>(choice_);
  }
  return fonts_->context();
}

std::shared_ptr<PangoText> Typesetter::typeset(std::string text, const TextStyle& style, Size box) {
  const auto found = std::find_if(recent_.begin(), recent_.end(), [&](const Entry& entry) {
    return entry.box == box && entry.style == style && entry.text == text;
  });
  if (found != recent_.end()) {
    recent_.splice(recent_.begin(), recent_, found);
    return recent_.front().layout;
  }
  auto layout = std::make_shared<PangoText>(context(), text, style, box);
  recent_.push_front({std::move(text), style, box, layout});
  trim();
  return layout;
}

void Typesetter::trim() {
  std::size_t bytes = 0;
  std::size_t count = 0;
  const auto firstTooMany = std::find_if(recent_.begin(), recent_.end(), [&](const Entry& entry) {
    bytes += entry.text.size();
    return ++count > kMostRecentTexts || (count > 1 && bytes > kMostRecentBytes);
  });
  recent_.erase(firstTooMany, recent_.end());
}

void Typesetter::release() {
  recent_.clear();
  fonts_.reset();
}

void Typesetter::choose(FontChoice choice) {
  release();
  choice_ = std::move(choice);
}

TextHandle::~TextHandle() {
  const MutexLock lock(Typesetter::shared().mutex);
  text_.reset();
}

void TextHandle::draw(_cairo* cairo) const {
  const MutexLock lock(Typesetter::shared().mutex);
  text_->draw(cairo);
}

void setFontChoice(FontChoice choice) {
  Typesetter& setter = Typesetter::shared();
  const MutexLock lock(setter.mutex);
  setter.choose(std::move(choice));
}

}  // namespace kesu
