// Compiled into the shared library only, where what draws is a library of its own beside it.
#include <dlfcn.h>
#include <kesu/Version.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "drawing/DrawingModule.h"
#include "platform/ServiceLog.h"

namespace kesu {
namespace {

/// The directory of the library that contains this function, links resolved; "" when it is unknown.
std::string ownDirectory() {
  Dl_info self{};
  // A relative name, from a relative search path, says nothing after a change of the working directory.
  if (dladdr(reinterpret_cast<const void*>(&ownDirectory), &self) == 0 || self.dli_fname == nullptr ||
      *self.dli_fname != '/') {
    return {};
  }
  struct Free {
    void operator()(char* text) const { std::free(text); }
  };
  const std::unique_ptr<char, Free> resolved(realpath(self.dli_fname, nullptr));
  const std::string path = resolved != nullptr ? resolved.get() : self.dli_fname;
  return path.substr(0, path.rfind('/') + 1);
}

DrawingModule* open(std::string& problem) {
  const std::string directory = ownDirectory();
  if (directory.empty()) {
    problem = "the directory of the library is unknown";
    return nullptr;
  }
  // At once: a function that is missing in an old Pango is an error here, not a crash later. By its path: neither the
  // environment nor the working directory decides what is loaded. Never closed: its objects are in use until the end.
  void* library = dlopen((directory + KESU_DRAWING_LIBRARY).c_str(), RTLD_NOW | RTLD_LOCAL);
  void* entry = library != nullptr ? dlsym(library, "kesu_drawing_module") : nullptr;
  if (entry == nullptr) {
    const char* error = dlerror();
    problem = error != nullptr ? error : "it has no entry";
    return nullptr;
  }
  DrawingModule* module = reinterpret_cast<decltype(&kesu_drawing_module)>(entry)(KESU_VERSION);
  problem = module == nullptr ? "it is of another version than " KESU_VERSION : "";
  return module;
}

DrawingModule* loadLibrary() {
  std::string problem;
  DrawingModule* module = open(problem);
  if (module == nullptr) {
    serviceLog(0, "Cannot load " KESU_DRAWING_LIBRARY ", messages are not shown: " + problem + ".");
  }
  return module;
}

}  // namespace

const DrawingSource& drawingSource() {
  static constexpr DrawingSource kSource{&loadLibrary, false};
  return kSource;
}

}  // namespace kesu
