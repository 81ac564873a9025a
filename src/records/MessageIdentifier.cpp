#include "records/MessageIdentifier.h"

#include "foundation/Base64.h"

namespace kesu {

std::string newBase64Uuid(Random& random) {
  std::string base64 = base64Encode(random.uuid());
  base64.erase(base64.find_last_not_of('=') + 1);
  return base64;
}

}  // namespace kesu
