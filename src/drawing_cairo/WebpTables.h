#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kesu {

/// Returns how many bytes libwebp will allocate for the Huffman tables of a file, those of its opacity included;
/// nothing for a file that is damaged before its codes begin or contains more than one picture.
///
/// The tables are those of the WebP Lossless Bitstream (VP8L; also in ALPH chunks): each block of pixels selects a
/// group of five prefix codes, up to 65,536 groups, and libwebp allocates 12 to 20 kB for each, with no limit to set:
/// 700 kB of file become 800 MB of tables. The number of groups is only known once everything before them is decoded,
/// which this does without keeping a pixel.
std::optional<std::size_t> webpTableBytes(std::string_view webp);

}  // namespace kesu
