#include "records/MessageIdentifier.h"

#include "foundation/Base64.h"

namespace kesu {

std::string base64Uuid(const std::array<std::uint8_t, 16>& uuid) {
  std::string base64 = base64Encode(uuid);
  base64.erase(base64.find_last_not_of('=') + 1);
  return base64;
}

std::string newBase64Uuid(Random& random) {
  return base64Uuid(random.uuid());
}

}  // namespace kesu
