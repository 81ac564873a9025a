#include "platform/linux/reachability/InternetFlags.h"

#include <chrono>
#include <utility>

#include "platform/linux/reachability/RouteProbe.h"

namespace kesu {
namespace {

// Flags are 32 bits: no values of theirs.
constexpr std::int64_t kNever = -2;
constexpr std::int64_t kUnknown = -1;

// A burst of records asks the kernel once; a change shows a second later at the latest.
constexpr std::int64_t kKeptNanoseconds = 1'000'000'000;

std::int64_t steadyNanoseconds() {
  return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::int64_t encode(std::optional<std::uint32_t> flags) {
  return flags ? std::int64_t{*flags} : kUnknown;
}

std::optional<std::uint32_t> decode(std::int64_t encoded) {
  return encoded < 0 ? std::nullopt : std::optional(static_cast<std::uint32_t>(encoded));
}

}  // namespace

InternetFlags::InternetFlags(std::string sysDirectory)
    : sysDirectory_(std::move(sysDirectory)), published_(kNever), kept_(kUnknown) {}

std::optional<std::uint32_t> InternetFlags::get() {
  if (const std::int64_t published = published_.load(); published != kNever) {
    return decode(published);
  }
  const std::int64_t now = steadyNanoseconds();
  if (now >= keptUntil_.load()) {
    const std::optional<WayFacts> way = RouteProbe(sysDirectory_).wayToInternet();
    kept_.store(encode(way ? std::optional(way->flags) : std::nullopt));
    keptUntil_.store(now + kKeptNanoseconds);
  }
  return decode(kept_.load());
}

void InternetFlags::publish(std::optional<std::uint32_t> flags) {
  published_.store(encode(flags));
}

}  // namespace kesu
