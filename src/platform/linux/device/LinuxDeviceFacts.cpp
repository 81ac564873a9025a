#include "platform/linux/device/LinuxDeviceFacts.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/utsname.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "platform/linux/base/SystemFile.h"
#include "platform/linux/device/ProcessTable.h"
#include "platform/linux/device/SystemTexts.h"
#include "platform/linux/device/WirelessNetwork.h"

namespace kesu {
namespace {

// The wanted line follows one with a number per interrupt source, of which servers have thousands.
constexpr std::size_t kStatBytes = std::size_t{1024} * 1024;

// Points of a television's screen whatever its pixels, as on other platforms: layouts are made for them.
constexpr double kScreenWidth = 1920.0;
constexpr double kScreenHeight = 1080.0;

// Below this the boot time only wavers by rounding between two clocks.
constexpr double kClockWasSetSeconds = 0.5;

std::optional<utsname> systemNames() {
  utsname names{};
  return ::uname(&names) == 0 ? std::optional(names) : std::nullopt;
}

std::optional<std::int64_t> systemCount(int which) {
  const long count = ::sysconf(which);
  return count > 0 ? std::optional<std::int64_t>(count) : std::nullopt;
}

/// The answer kept in `slot`, or `read()`, which is kept when it is one.
template <typename Fact, typename Read>
std::optional<Fact> keptIn(std::optional<Fact>& slot, Read read) {
  if (!slot) {
    slot = read();
  }
  return slot;
}

double secondsOf(clockid_t clock) {
  constexpr double kNanosecondsPerSecond = 1e9;
  timespec time{};
  ::clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / kNanosecondsPerSecond;
}

/// How far the wall clock is ahead of the clock that counts from the start. Only setting the clock changes
/// it.
double clockOffset() {
  return secondsOf(CLOCK_REALTIME) - secondsOf(CLOCK_BOOTTIME);
}

bool exists(const std::string& path) {
  return ::access(path.c_str(), F_OK) == 0;
}

/// The names in a directory, in order.
std::vector<std::string> namesIn(const std::string& directory) {
  std::vector<std::string> names;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(directory, error), end; !error && entry != end;
       entry.increment(error)) {
    names.push_back(entry->path().filename());
  }
  std::ranges::sort(names);
  return names;
}

/// The dotted address of an entry if it is an IPv4 address of the interface.
std::optional<std::string> dottedAddress(const ifaddrs& entry, const std::string& interface) {
  if (entry.ifa_addr == nullptr || entry.ifa_addr->sa_family != AF_INET || interface != entry.ifa_name) {
    return std::nullopt;
  }
  sockaddr_in address{};
  std::memcpy(&address, entry.ifa_addr, sizeof address);
  std::array<char, INET_ADDRSTRLEN> text{};
  ::inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size());
  return text.data();
}

std::string withoutFinalSlash(std::string path) {
  while (path.ends_with('/')) {
    path.pop_back();
  }
  return path;
}

}  // namespace

LinuxDeviceFacts::LinuxDeviceFacts(std::string root) : root_(withoutFinalSlash(std::move(root))) {}

std::optional<std::string> LinuxDeviceFacts::machine() {
  const auto names = systemNames();
  return names ? std::optional<std::string>(names->machine) : std::nullopt;
}

std::optional<std::uint64_t> LinuxDeviceFacts::memoryBytes() {
  MutexLock lock(mutex_);
  return keptIn(memoryBytes_,
                [this] { return bytesOfLine(readSystemFile(path("/proc/meminfo")).value_or(""), "MemTotal"); });
}

std::optional<std::int64_t> LinuxDeviceFacts::userMemoryBytes() {
  const auto available = bytesOfLine(readSystemFile(path("/proc/meminfo")).value_or(""), "MemAvailable");
  return available ? std::optional(static_cast<std::int64_t>(*available)) : std::nullopt;
}

std::optional<std::int64_t> LinuxDeviceFacts::processorHertz() {
  MutexLock lock(mutex_);
  return keptIn(processorHertz_, [this] { return readProcessorHertz(); });
}

std::optional<std::int64_t> LinuxDeviceFacts::readProcessorHertz() const {
  const auto kilohertz = readSystemFile(path("/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq"));
  if (const auto highest = scaledNumber(kilohertz.value_or(""), 1e3)) {
    return highest;
  }
  const std::string description = readSystemFile(path("/proc/cpuinfo")).value_or("");
  return scaledNumber(valueOfLine(description, "cpu MHz").value_or(""), 1e6);
}

std::optional<std::int64_t> LinuxDeviceFacts::processors() {
  MutexLock lock(mutex_);
  return keptIn(processors_, [] { return systemCount(_SC_NPROCESSORS_CONF); });
}

std::optional<std::int64_t> LinuxDeviceFacts::activeProcessors() {
  return systemCount(_SC_NPROCESSORS_ONLN);
}

std::optional<BootTime> LinuxDeviceFacts::bootTime() {
  const double offset = clockOffset();
  MutexLock lock(mutex_);
  if (!bootTime_ || std::abs(offset - clockOffset_) > kClockWasSetSeconds) {
    bootTime_ = readBootTime();
    clockOffset_ = offset;
  }
  return bootTime_;
}

std::optional<BootTime> LinuxDeviceFacts::readBootTime() const {
  const std::string text = readSystemFile(path("/proc/stat"), kStatBytes).value_or("");
  constexpr std::string_view kName = "\nbtime ";
  const std::size_t line = text.find(kName);
  if (line == std::string::npos) {
    return std::nullopt;
  }
  const std::string_view rest = std::string_view(text).substr(line + kName.size());
  const auto seconds = wholeNumber(rest.substr(0, rest.find('\n')));
  return seconds ? std::optional(BootTime{*seconds, 0}) : std::nullopt;
}

std::optional<std::vector<ProcessFacts>> LinuxDeviceFacts::processes() {
  return readProcesses(path("/proc"), bootTime().value_or(BootTime{}).seconds);
}

std::optional<std::int32_t> LinuxDeviceFacts::parentProcess(std::int32_t processId) {
  const auto process = readProcess(path("/proc"), processId);
  return process ? std::optional(process->parentId) : std::nullopt;
}

std::optional<std::string> LinuxDeviceFacts::ipv4Address(const std::string& interface) {
  ifaddrs* list = nullptr;
  // The first question is cheap and mostly enough: few devices have an interface of the name that records ask for.
  if (::if_nametoindex(interface.c_str()) == 0 || ::getifaddrs(&list) != 0) {
    return std::nullopt;
  }
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owned(list, &::freeifaddrs);
  std::optional<std::string> last;
  for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
    if (auto address = dottedAddress(*entry, interface)) {
      last = std::move(address);
    }
  }
  return last;
}

std::optional<WifiFacts> LinuxDeviceFacts::wifi() {
  const std::string interfaces = path("/sys/class/net");
  // Most boxes hang on a cable: without a wireless driver of either kind there is nothing to go through.
  if (!exists(path("/sys/class/ieee80211")) && !exists(path("/proc/net/wireless"))) {
    return std::nullopt;
  }
  for (const std::string& name : namesIn(interfaces)) {
    const std::string folder = interfaces + "/" + name;
    const bool isWireless = exists(folder + "/wireless") || exists(folder + "/phy80211");
    if (const auto network = isWireless ? wirelessNetworkOf(name) : std::nullopt) {
      return network;
    }
  }
  return std::nullopt;
}

std::optional<std::string> LinuxDeviceFacts::systemVersion() {
  MutexLock lock(mutex_);
  return keptIn(systemVersion_, [this] { return readSystemVersion(); });
}

std::optional<std::string> LinuxDeviceFacts::readSystemVersion() const {
  for (const char* file : {"/etc/os-release", "/usr/lib/os-release"}) {
    if (const auto version = assignedValue(readSystemFile(path(file)).value_or(""), "VERSION_ID")) {
      return version;
    }
  }
  const auto names = systemNames();
  return names ? std::optional<std::string>(names->release) : std::nullopt;
}

std::optional<std::string> LinuxDeviceFacts::deviceName() {
  if (const auto pretty = assignedValue(readSystemFile(path("/etc/machine-info")).value_or(""), "PRETTY_HOSTNAME")) {
    return pretty;
  }
  const auto names = systemNames();
  return names && names->nodename[0] != '\0' ? std::optional(cleanText(names->nodename)) : std::nullopt;
}

std::optional<std::string> LinuxDeviceFacts::vendorIdentifier() {
  return uuidOfMachine(readSystemFile(path("/etc/machine-id")).value_or(""));
}

std::optional<ScreenFacts> LinuxDeviceFacts::screen() {
  const std::string connectors = path("/sys/class/drm");
  for (const std::string& name : namesIn(connectors)) {
    const std::string folder = connectors + "/" + name;
    if (readSystemFile(folder + "/status").value_or("") != "connected\n") {
      continue;
    }
    const std::string modes = readSystemFile(folder + "/modes").value_or("");
    if (const auto height = heightOfMode(std::string_view(modes).substr(0, modes.find('\n')))) {
      return ScreenFacts{kScreenWidth, kScreenHeight, *height / kScreenHeight};
    }
  }
  return std::nullopt;
}

}  // namespace kesu
