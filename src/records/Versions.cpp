#include "records/Versions.h"

namespace kesu {

std::string fullVersionText() {
  return std::to_string(k_KesuDataVersionNumber) + "-" + std::string(k_osNameId) + "-" + std::string(k_SDKVersion);
}

}  // namespace kesu
