#include "delivery/StoreFileName.h"

#include <cinttypes>
#include <cstdint>
#include <cstdio>

#include "foundation/Text.h"
#include "records/TimeReference.h"

namespace kesu {
namespace {

constexpr std::int64_t kMicrosecondsOf3650Days = 315360000000000;
constexpr double kMicrosecondsPerSecond = 1e6;
constexpr std::size_t kTailLength = 8;

}  // namespace

std::string storeFileName(double secondsSince1970) {
  const double since2001 = secondsSince1970 - kReferenceDateSince1970;
  const std::int64_t number = static_cast<std::int64_t>(since2001 * kMicrosecondsPerSecond) - kMicrosecondsOf3650Days;
  char digits[32];
  std::snprintf(digits, sizeof digits, "c%016" PRId64, number);
  std::string name = digits;
  name.insert(name.size() - kTailLength, "-");
  return name + "." + std::string(kStoreExtension);
}

bool isStoreFile(std::string_view path) {
  return pathExtension(path) == kStoreExtension;
}

}  // namespace kesu
