#pragma once

#include <fontconfig/fontconfig.h>

namespace kesu {

/// Has a program of our own end without the fonts of the system, which the library that sets texts looks up on a thread
/// of its own: fontconfig finds their parts by offsets instead of pointers, and LeakSanitizer takes them for lost. Not
/// for the library, since a host shares fontconfig with it. FcFini() would not wait for that thread.
inline void forgetSystemFonts() {
  FcConfig* nothing = FcConfigCreate();
  FcConfigSetCurrent(nothing);
  FcConfigDestroy(nothing);
}

}  // namespace kesu
