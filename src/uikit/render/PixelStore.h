#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kesu {

/// Transparent pixels to draw into, in pages of their own: they take no memory before they are written to and release
/// it at once, unlike those of an allocator.
class PixelStore {
 public:
  PixelStore() = default;
  /// Null pixels without a size or when out of memory.
  PixelStore(int width, int height);

  std::uint32_t* pixels() const { return pixels_.get(); }

 private:
  struct Release {
    Release() : bytes(0) {}
    explicit Release(std::size_t size) : bytes(size) {}
    void operator()(std::uint32_t* pixels) const;

    std::size_t bytes;
  };
  std::unique_ptr<std::uint32_t, Release> pixels_;
};

}  // namespace kesu
