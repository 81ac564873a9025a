#include "device/KesuMetrics.h"

#include "foundation/Digest.h"
#include "foundation/Text.h"
#include "network/KesuServiceReachability.h"
#include "records/RecordKeys.h"

namespace kesu {

std::string hashStr(std::string_view text) {
  return hexLower(sha256(utf8PrefixOfUtf16Length(text)));
}

std::string KesuMetrics::granularReachability() {
  switch (static_cast<NetworkStatus>(hardware_.reachability())) {
    case NetworkStatus::ReachableCell:
      return hardware_.getCurrentRadioAccessTechnology();
    case NetworkStatus::Reachable:
      return "w";
    case NetworkStatus::NotReachable:
      return "n";
  }
  return "n";
}

std::string KesuMetrics::carrierName() {
  // The two processor names that simulators report instead of a model.
  const std::string machine = product().value_or("");
  return machine == "i386" || machine == "x86_64" ? "Simulated" : std::string(kNoCarrier);
}

}  // namespace kesu
