#pragma once

#include <cairo.h>
#include <gtest/gtest.h>

#include "drawing/TextLayout.h"
#include "drawing_cairo/SystemFonts.h"

namespace kesu {

/// Releases the fonts at the end of a test program: LeakSanitizer would report them. Include this in one test file of
/// every program that typesets texts.
class FontRelease : public ::testing::Environment {
 public:
  void TearDown() override {
    releaseFonts();
    cairo_debug_reset_static_data();
    forgetSystemFonts();
  }
};

inline ::testing::Environment* const kFontRelease = ::testing::AddGlobalTestEnvironment(new FontRelease);

}  // namespace kesu

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
/// Pango looks up fonts on threads of its own, with locks that ThreadSanitizer does not see: its reports from inside
/// are no races. Our own code is checked as ever.
extern "C" __attribute__((used, visibility("default"))) const char* __tsan_default_options() {
  return "ignore_noninstrumented_modules=1";
}
#endif
#endif
