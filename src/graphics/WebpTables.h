#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kesu {

/// How much memory libwebp will take, in bytes, for the tables of a file's Huffman codes, those of its opacity
/// included; nothing for a file that is damaged before its codes begin or holds more than one picture.
///
/// A lossless picture names a group of five codes for every few of its pixels, up to 65,536 groups, and libwebp keeps
/// 12 to 20 kB for each, with no limit that could be set: 700 kB of file are 800 MB of tables. How many there are is
/// only known after everything before them was decoded, which is what this does, without keeping any pixel.
std::optional<std::size_t> webpTableBytes(std::string_view webp);

}  // namespace kesu
