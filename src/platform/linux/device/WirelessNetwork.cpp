#include "platform/linux/device/WirelessNetwork.h"

#include <sys/ioctl.h>
#include <sys/socket.h>

// After sys/socket.h, which it needs and does not include.
#include <linux/wireless.h>

#include <algorithm>
#include <cstring>

#include "foundation/Digest.h"
#include "platform/linux/base/UniqueFd.h"
#include "platform/linux/device/SystemTexts.h"

namespace kesu {
namespace {

/// A question about an interface; nothing when its name is too long to be one.
std::optional<iwreq> questionAbout(const std::string& interface) {
  iwreq question{};
  if (interface.empty() || interface.size() >= sizeof question.ifr_name) {
    return std::nullopt;
  }
  std::memcpy(question.ifr_name, interface.data(), interface.size());
  return question;
}

std::optional<std::string> networkName(int fd, iwreq question) {
  std::array<char, IW_ESSID_MAX_SIZE + 1> name{};
  question.u.essid.pointer = name.data();
  question.u.essid.length = IW_ESSID_MAX_SIZE;
  if (::ioctl(fd, SIOCGIWESSID, &question) != 0 || question.u.essid.length == 0) {
    return std::nullopt;
  }
  const std::size_t length = std::min<std::size_t>(question.u.essid.length, IW_ESSID_MAX_SIZE);
  return cleanText(std::string_view(name.data(), length));
}

std::optional<std::string> accessPoint(int fd, iwreq question) {
  if (::ioctl(fd, SIOCGIWAP, &question) != 0) {
    return std::nullopt;
  }
  std::array<std::uint8_t, 6> address{};
  std::memcpy(address.data(), question.u.ap_addr.sa_data, address.size());
  return accessPointText(address);
}

}  // namespace

std::optional<WifiFacts> wirelessNetworkOf(const std::string& interface) {
  const auto question = questionAbout(interface);
  const UniqueFd fd(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  if (!question || !fd) {
    return std::nullopt;
  }
  const auto bssid = accessPoint(fd.get(), *question);
  const auto ssid = bssid ? networkName(fd.get(), *question) : std::nullopt;
  return ssid ? std::optional(WifiFacts{*bssid, *ssid}) : std::nullopt;
}

std::optional<std::string> accessPointText(const std::array<std::uint8_t, 6>& address) {
  for (const int none : {0x00, 0x44, 0xff}) {  // Drivers differ in what they answer while in no network.
    if (std::ranges::all_of(address, [none](std::uint8_t byte) { return byte == none; })) {
      return std::nullopt;
    }
  }
  std::string text = hexLower(address);
  for (std::size_t at = 2; at < text.size(); at += 3) {
    text.insert(at, 1, ':');
  }
  return text;
}

}  // namespace kesu
