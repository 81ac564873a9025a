#pragma once

#include <kesu/platform/NotificationCenter.h>
#include <kesu/platform/ReachabilitySource.h>
#include <kesu/records/Constants.h>

#include <cstdint>
#include <memory>
#include <string>

namespace kesu {

/// How a target can be reached.
enum class NetworkStatus : std::uint32_t {
  NotReachable = 0,
  Reachable = 1,     ///< Over Wi-Fi, cable or mobile radio alike.
  ReachableCell = 2  ///< Kept: no flag rule produces it; the re-send pass and the network class still know it.
};

/// Watches whether a target can be reached and posts a notification on every change. Main thread.
class KesuServiceReachability {
 public:
  /// Watches a host by name. Null when the name cannot be a host name.
  static std::unique_ptr<KesuServiceReachability> reachabilityWithHostName(ReachabilitySource& source,
                                                                           NotificationCenter& notifications,
                                                                           const std::string& hostName, int port);

  /// Starts posting notifications. Returns false when the target cannot be watched or is watched already.
  bool startNotifier();

  /// Returns the present status; NotReachable when the flags cannot be read.
  NetworkStatus currentReachabilityStatus();

  /// The rule for hosts and addresses. Pure.
  static NetworkStatus networkStatusForFlags(std::uint32_t flags);

  /// The rule for the local Wi-Fi network. Pure.
  static NetworkStatus localWiFiStatusForFlags(std::uint32_t flags);

  // Owed to the agreed interface; no caller inside the library, which watches its collector only.

  /// Watches an IPv4 address, in host byte order.
  static std::unique_ptr<KesuServiceReachability> reachabilityWithAddress(ReachabilitySource& source,
                                                                          NotificationCenter& notifications,
                                                                          std::uint32_t address);

  /// Watches the all-zero address: any route to the internet.
  static std::unique_ptr<KesuServiceReachability> reachabilityForInternetConnection(ReachabilitySource& source,
                                                                                    NotificationCenter& notifications);

  /// Watches 169.254.0.0, the link-local network, by the local-Wi-Fi rule.
  static std::unique_ptr<KesuServiceReachability> reachabilityForLocalWiFi(ReachabilitySource& source,
                                                                           NotificationCenter& notifications);

  /// Stops posting notifications. Destruction does the same.
  void stopNotifier();

  /// Whether a connection must be made first. False when the flags cannot be read.
  bool connectionRequired();

 private:
  KesuServiceReachability(std::unique_ptr<ReachabilityHandle> handle, NotificationCenter& notifications,
                          bool localWiFiRef);

  static std::unique_ptr<KesuServiceReachability> watching(ReachabilitySource& source,
                                                           NotificationCenter& notifications,
                                                           const ReachabilityTarget& target, bool localWiFiRef);

  std::unique_ptr<ReachabilityHandle> reachabilityRef_;
  NotificationCenter& notifications_;
  bool localWiFiRef_;
};

}  // namespace kesu
