#include "uikit/render/PixelStore.h"

#include <sys/mman.h>

namespace kesu {
namespace {

// Faulting in a screen in pages of 4 kB takes longer than drawing it: from 4 MB on, ask for huge ones.
constexpr std::size_t kManyPages = std::size_t{4} * 1024 * 1024;

}  // namespace

PixelStore::PixelStore(int width, int height) {
  if (width <= 0 || height <= 0) {
    return;
  }
  const std::size_t bytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * sizeof(std::uint32_t);
  void* pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pages != MAP_FAILED) {
#if defined(MADV_HUGEPAGE)
    if (bytes >= kManyPages) {
      madvise(pages, bytes, MADV_HUGEPAGE);
    }
#endif
    pixels_ = std::unique_ptr<std::uint32_t, Release>(static_cast<std::uint32_t*>(pages), Release(bytes));
  }
}

void PixelStore::Release::operator()(std::uint32_t* pixels) const {
  munmap(pixels, bytes);
}

}  // namespace kesu
