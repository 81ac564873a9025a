#include <kesu/platform/DeviceFacts.h>

namespace kesu {

std::optional<std::string> DeviceFacts::machine() {
  return std::nullopt;
}

std::optional<std::uint64_t> DeviceFacts::memoryBytes() {
  return std::nullopt;
}

std::optional<std::int64_t> DeviceFacts::userMemoryBytes() {
  return std::nullopt;
}

std::optional<std::int64_t> DeviceFacts::processorHertz() {
  return std::nullopt;
}

std::optional<std::int64_t> DeviceFacts::busHertz() {
  return std::nullopt;
}

std::optional<std::int64_t> DeviceFacts::processors() {
  return std::nullopt;
}

std::optional<std::int64_t> DeviceFacts::activeProcessors() {
  return std::nullopt;
}

std::optional<BootTime> DeviceFacts::bootTime() {
  return std::nullopt;
}

std::optional<std::vector<ProcessFacts>> DeviceFacts::processes() {
  return std::nullopt;
}

std::optional<std::int32_t> DeviceFacts::parentProcess(std::int32_t /*processId*/) {
  return std::nullopt;
}

std::optional<std::string> DeviceFacts::ipv4Address(const std::string& /*interface*/) {
  return std::nullopt;
}

std::optional<WifiFacts> DeviceFacts::wifi() {
  return std::nullopt;
}

std::optional<std::string> DeviceFacts::systemVersion() {
  return std::nullopt;
}

std::optional<std::string> DeviceFacts::deviceName() {
  return std::nullopt;
}

std::optional<std::string> DeviceFacts::vendorIdentifier() {
  return std::nullopt;
}

bool DeviceFacts::proximityClose() {
  return false;
}

std::optional<ScreenFacts> DeviceFacts::screen() {
  return std::nullopt;
}

}  // namespace kesu
