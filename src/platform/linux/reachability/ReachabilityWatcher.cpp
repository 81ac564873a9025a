#include "platform/linux/reachability/ReachabilityWatcher.h"

#include <utility>

#include "platform/linux/base/ServiceThread.h"
#include "platform/linux/reachability/RouteProbe.h"

namespace kesu {

ReachabilityWatcher::ReachabilityWatcher(ReachabilitySystem system)
    : system_(std::move(system)),
      wake_(std::make_shared<WakeEvent>()),
      mailbox_(wake_),
      internet_(system_.sysDirectory) {}

bool ReachabilityWatcher::ensureThread() {
  if (ended_ || forkGuard_.isForkedChild() || wake_->fd() < 0) {
    return false;
  }
  if (!thread_) {
    std::thread thread =
        startServiceThread("kesu-reach", [this] { ReachabilityMonitor(mailbox_, internet_, wake_, system_).run(); });
    if (!thread.joinable()) {
      return false;
    }
    thread_ = std::make_unique<std::thread>(std::move(thread));
    running_ = true;
  }
  return true;
}

std::shared_ptr<ReachabilityWatch> ReachabilityWatcher::add(const ReachabilityTarget& target,
                                                            std::function<void()> announce) {
  if (!ensureThread()) {
    return nullptr;
  }
  auto watch = std::make_shared<ReachabilityWatch>(++lastId_, target, std::move(announce));
  mailbox_.add(watch);
  return watch;
}

void ReachabilityWatcher::remove(const ReachabilityWatch& watch) {
  if (!forkGuard_.isForkedChild()) {
    mailbox_.remove(watch.id);
  }
}

void ReachabilityWatcher::observe(const std::string& host, int port, bool connected) {
  if (running_ && !forkGuard_.isForkedChild()) {
    mailbox_.observe(host, port, connected);
  }
}

std::optional<std::uint32_t> ReachabilityWatcher::flagsNow(const ReachabilityTarget& target) {
  if (target.hostName.empty() && target.address == 0) {
    return internetFlags();
  }
  const auto address = IpAddress::fromText(comparableHostName(target.hostName));
  if (!target.hostName.empty() && !address) {
    return std::nullopt;
  }
  RouteProbe routes(system_.sysDirectory);
  const auto way = address ? routes.wayTo(*address) : routes.wayToTarget(target.address);
  return way ? std::optional(way->flags) : std::nullopt;
}

void ReachabilityWatcher::shutDown() {
  ended_ = true;
  if (!thread_) {
    return;
  }
  if (forkGuard_.isForkedChild()) {
    // Leaked on purpose: the thread is not in this process, so it can be neither joined nor detached.
    static_cast<void>(thread_.release());
    return;
  }
  mailbox_.stop();
  thread_->join();
  thread_.reset();
}

}  // namespace kesu
