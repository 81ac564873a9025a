#pragma once

#include <cairo.h>
#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>

#include "graphics/TextLayout.h"

namespace kesu {

/// Has a test program end without fonts. LeakSanitizer takes what fontconfig holds for lost, since it finds its parts
/// by offsets instead of pointers. A program's main() may not want to do the same: a host shares fontconfig with the
/// library. Include this in one test file of every program that sets texts.
class FontRelease : public testing::Environment {
 public:
  void TearDown() override {
    releaseFonts();
    cairo_debug_reset_static_data();
    FcConfig* nothing = FcConfigCreate();  // FcFini() would not wait for threads that still look up fonts.
    FcConfigSetCurrent(nothing);
    FcConfigDestroy(nothing);
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
