#pragma once

#include <cairo.h>
#include <gtest/gtest.h>

#include "graphics/SystemFonts.h"
#include "graphics/TextLayout.h"

namespace kesu {

/// Has a test program end without fonts, which LeakSanitizer would take for lost. Include this in one test file of
/// every program that sets texts.
class FontRelease : public testing::Environment {
 public:
  void TearDown() override {
    releaseFonts();
    cairo_debug_reset_static_data();
    forgetSystemFonts();
  }
};

inline testing::Environment* const kFontRelease = testing::AddGlobalTestEnvironment(new FontRelease);

}  // namespace kesu

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
/// The library that sets texts looks up fonts on threads of its own, with locks that ThreadSanitizer does not see: what
/// happens inside of them says nothing. Everything of ours is watched as ever.
extern "C" __attribute__((used, visibility("default"))) const char* __tsan_default_options() {
  return "ignore_noninstrumented_modules=1";
}
#endif
#endif
