#include "drawing_cairo/PngEncoder.h"

#include <png.h>

#include <csetjmp>
#include <exception>
#include <new>
#include <utility>
#include <vector>

namespace kesu {
namespace {

constexpr int kFastestCompression = 1;

/// The library's state while one file is written, and what is written so far.
class PngWriter {
 public:
  explicit PngWriter(const Image& image)
      : image_(image),
        row_(static_cast<std::size_t>(image.width()) * channels()),
        png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, [](png_structp, png_const_charp) {})) {
    info_ = png_ != nullptr ? png_create_info_struct(png_) : nullptr;
  }
  ~PngWriter() { png_destroy_write_struct(&png_, &info_); }

  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;

  /// The library leaves by longjmp() when something fails: nothing on the way back to here may need a destructor.
  bool write() {
    if (info_ == nullptr || setjmp(png_jmpbuf(png_)) != 0) {  // NOLINT(cert-err52-cpp): its only way to fail.
      return false;
    }
    png_set_write_fn(png_, &file_, append, nullptr);
    png_set_compression_level(png_, kFastestCompression);
    png_set_filter(png_, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
    png_set_IHDR(png_, info_, static_cast<png_uint_32>(image_.width()), static_cast<png_uint_32>(image_.height()), 8,
                 image_.isOpaque() ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png_, info_);
    for (int y = 0; y < image_.height(); ++y) {
      fillRow(y);
      png_write_row(png_, row_.data());
    }
    png_write_end(png_, nullptr);
    return true;
  }
  std::string takeFile() { return std::move(file_); }

 private:
  static void append(png_structp png, png_bytep bytes, std::size_t count) {
    bool isAppended = true;
    try {
      static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<const char*>(bytes), count);
    } catch (const std::exception&) {
      isAppended = false;
    }
    if (!isAppended) {
      png_error(png, "no memory");
    }
  }

  static png_byte unmultiplied(std::uint32_t channel, std::uint32_t alpha) {
    return static_cast<png_byte>(channel >= alpha ? 255 : (channel * 255 + alpha / 2) / alpha);
  }

  std::size_t channels() const { return image_.isOpaque() ? 3 : 4; }

  void fillRow(int y) {
    const std::uint32_t* pixels = image_.pixels() + static_cast<std::ptrdiff_t>(y) * image_.width();
    png_bytep target = row_.data();
    for (int x = 0; x < image_.width(); ++x, target += channels()) {
      fillPixel(pixels[x], target);
    }
  }

  void fillPixel(std::uint32_t pixel, png_bytep target) const {
    const std::uint32_t alpha = pixel >> 24;
    for (int channel = 0; channel < 3; ++channel) {
      const std::uint32_t value = pixel >> (16 - 8 * channel) & 0xFF;
      target[channel] = alpha == 0 ? png_byte{0} : unmultiplied(value, alpha);
    }
    if (!image_.isOpaque()) {
      target[3] = static_cast<png_byte>(alpha);
    }
  }

  const Image& image_;
  std::vector<png_byte> row_;
  std::string file_;
  png_structp png_;
  png_infop info_ = nullptr;
};

}  // namespace

std::optional<std::string> encodePicture(const Image& image) {
  try {
    PngWriter writer(image);
    return writer.write() ? std::optional<std::string>(writer.takeFile()) : std::nullopt;
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
}

}  // namespace kesu
