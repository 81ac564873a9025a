// Fuzzes: foundation
#include <algorithm>
#include <cstdint>

#include "Require.h"
#include "foundation/Json.h"

namespace {

// A real without fraction comes back as the integer it equals, which has no negative zero.
bool isReadBackAs(const kesu::Value& before, const kesu::Value& after) {
  if (before.array() != nullptr && after.array() != nullptr) {
    return std::equal(before.array()->begin(), before.array()->end(), after.array()->begin(), after.array()->end(),
                      isReadBackAs);
  }
  if (before.dictionary() != nullptr && after.dictionary() != nullptr) {
    return std::equal(before.dictionary()->begin(), before.dictionary()->end(), after.dictionary()->begin(),
                      after.dictionary()->end(), [](const auto& one, const auto& other) {
                        return one.key == other.key && isReadBackAs(one.value, other.value);
                      });
  }
  const bool isWhole = before.real() != nullptr && after.integer() != nullptr;
  return isWhole ? *before.real() == static_cast<double>(*after.integer()) : before == after;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto value = kesu::parseJson({reinterpret_cast<const char*>(data), size});
  std::string text;
  if (!value) {
    return 0;
  }
  kesu::fuzz::require(kesu::writeJson(*value, text) == kesu::JsonStatus::Ok);
  const auto again = kesu::parseJson(text);
  kesu::fuzz::require(again && isReadBackAs(*value, *again));
  return 0;
}
