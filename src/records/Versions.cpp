#include "records/Versions.h"

namespace kesu {

const std::string& fullVersionText() {
  static const std::string text =
      std::to_string(k_KesuDataVersionNumber) + "-" + std::string(k_osNameId) + "-" + std::string(k_SDKVersion);
  return text;
}

}  // namespace kesu
