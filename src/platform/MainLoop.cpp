#include <kesu/platform/MainLoop.h>
#include <kesu/platform/Platform.h>

namespace kesu {

MainLoop& MainLoop::shared() {
  return Platform::current().mainLoop;
}

}  // namespace kesu
