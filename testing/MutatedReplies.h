#pragma once

#include <cstddef>
#include <functional>
#include <random>
#include <string>

namespace kesu::testing {

/// How many damaged replies a parser has to survive.
inline constexpr int kMutations = 12000;

/// Damages a text or other bytes: cuts them, flips a bit, changes a byte, and inserts, removes, doubles or replaces a
/// piece with what parsers stumble over.
inline std::string mutated(std::string text, std::mt19937& random) {
  static constexpr const char* kPieces[] = {"null", "{",  "}",     "[",    "]",    "\"", ",",  ":", "1e999",   "-",
                                            "\\u",  "[[", "\\ud8", "\xFF", "true", "{}", "[]", "0", "\\u0000", "\"\""};
  for (std::size_t changes = 1 + random() % 3; changes > 0; --changes) {
    const std::size_t place = text.empty() ? 0 : random() % text.size();
    const std::size_t length = random() % 12;
    const char* piece = kPieces[random() % std::size(kPieces)];
    switch (random() % 7) {
      case 0:
        text.resize(place);
        break;
      case 1:
        if (!text.empty()) {
          text[place] = static_cast<char>(text[place] ^ (1 << random() % 8));
        }
        break;
      case 2:
        text.insert(place, piece);
        break;
      case 3:
        text.erase(place, length);
        break;
      case 4:
        text.insert(place, text.substr(place, length));
        break;
      case 5:
        text.replace(place, 1, 1, static_cast<char>(random()));
        break;
      default:
        text.replace(place, length, piece);
    }
  }
  return text;
}

/// Calls `use` with kMutations damaged forms of a reply or file, the same in every run.
inline void forEachMutation(const std::string& reply, const std::function<void(const std::string&)>& use) {
  std::mt19937 random(20170315);
  for (int i = 0; i < kMutations; ++i) {
    use(mutated(reply, random));
  }
}

}  // namespace kesu::testing
