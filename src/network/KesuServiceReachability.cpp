#include "network/KesuServiceReachability.h"

#include <utility>

namespace kesu {
namespace {

constexpr std::uint32_t kLinkLocalNetwork = 0xA9FE0000;  // 169.254.0.0

bool has(std::uint32_t flags, std::uint32_t bit) {
  return (flags & bit) != 0;
}

}  // namespace

KesuServiceReachability::KesuServiceReachability(std::unique_ptr<ReachabilityHandle> handle,
                                                 NotificationCenter& notifications, bool localWiFiRef)
    : reachabilityRef_(std::move(handle)), notifications_(notifications), localWiFiRef_(localWiFiRef) {}

std::unique_ptr<KesuServiceReachability> KesuServiceReachability::watching(ReachabilitySource& source,
                                                                           NotificationCenter& notifications,
                                                                           const ReachabilityTarget& target,
                                                                           bool localWiFiRef) {
  auto handle = source.watch(target);
  if (handle == nullptr) {
    return nullptr;
  }
  return std::unique_ptr<KesuServiceReachability>(
      new KesuServiceReachability(std::move(handle), notifications, localWiFiRef));
}

std::unique_ptr<KesuServiceReachability> KesuServiceReachability::reachabilityWithHostName(
    ReachabilitySource& source, NotificationCenter& notifications, const std::string& hostName, int port) {
  return hostName.empty() ? nullptr : watching(source, notifications, {.hostName = hostName, .port = port}, false);
}

std::unique_ptr<KesuServiceReachability> KesuServiceReachability::reachabilityWithAddress(
    ReachabilitySource& source, NotificationCenter& notifications, std::uint32_t address) {
  return watching(source, notifications, {.hostName = "", .address = address}, false);
}

std::unique_ptr<KesuServiceReachability> KesuServiceReachability::reachabilityForInternetConnection(
    ReachabilitySource& source, NotificationCenter& notifications) {
  return reachabilityWithAddress(source, notifications, 0);
}

std::unique_ptr<KesuServiceReachability> KesuServiceReachability::reachabilityForLocalWiFi(
    ReachabilitySource& source, NotificationCenter& notifications) {
  return watching(source, notifications, {.hostName = "", .address = kLinkLocalNetwork}, true);
}

bool KesuServiceReachability::startNotifier() {
  return reachabilityRef_->start([this] { notifications_.post(kKesuReachabilityChangedNotification, this); });
}

void KesuServiceReachability::stopNotifier() {
  reachabilityRef_->stop();
}

NetworkStatus KesuServiceReachability::currentReachabilityStatus() {
  const auto flags = reachabilityRef_->flags();
  if (!flags) {
    return NetworkStatus::NotReachable;
  }
  return localWiFiRef_ ? localWiFiStatusForFlags(*flags) : networkStatusForFlags(*flags);
}

bool KesuServiceReachability::connectionRequired() {
  return has(reachabilityRef_->flags().value_or(0), kFlagConnectionRequired);
}

NetworkStatus KesuServiceReachability::networkStatusForFlags(std::uint32_t flags) {
  if (!has(flags, kFlagReachable)) {
    return NetworkStatus::NotReachable;
  }
  if (has(flags, kFlagIsWwan)) {
    return NetworkStatus::Reachable;
  }
  const bool connectsByItself = has(flags, kFlagConnectionOnTraffic) || has(flags, kFlagConnectionOnDemand);
  if (connectsByItself && !has(flags, kFlagInterventionRequired)) {
    return NetworkStatus::Reachable;
  }
  return has(flags, kFlagConnectionRequired) ? NetworkStatus::NotReachable : NetworkStatus::Reachable;
}

NetworkStatus KesuServiceReachability::localWiFiStatusForFlags(std::uint32_t flags) {
  return has(flags, kFlagReachable) && has(flags, kFlagIsDirect) ? NetworkStatus::Reachable
                                                                 : NetworkStatus::NotReachable;
}

}  // namespace kesu
