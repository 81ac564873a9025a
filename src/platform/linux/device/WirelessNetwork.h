#pragma once

#include <kesu/platform/DeviceFacts.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace kesu {

/// Asks the driver for the wireless network of an interface (no scan is started); nothing when the interface is not
/// wireless or in no network. Any thread.
std::optional<WifiFacts> wirelessNetworkOf(const std::string& interface);

/// The text of an access point's hardware address ("a4:b1:..."); nothing for those that stand for "none". Pure.
std::optional<std::string> accessPointText(const std::array<std::uint8_t, 6>& address);

}  // namespace kesu
