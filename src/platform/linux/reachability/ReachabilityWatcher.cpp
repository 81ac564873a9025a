#include "platform/linux/reachability/ReachabilityWatcher.h"

#include <unistd.h>

#include <utility>

#include "platform/linux/base/ServiceThread.h"
#include "platform/linux/reachability/RouteProbe.h"

namespace kesu {

ReachabilityWatcher::ReachabilityWatcher(ReachabilitySystem system)
    : system_(std::move(system)),
      process_(::getpid()),
      wake_(std::make_shared<WakeEvent>()),
      mailbox_(wake_),
      internet_(system_.sysDirectory) {}

bool ReachabilityWatcher::isForked() const {
  return ::getpid() != process_;
}

bool ReachabilityWatcher::ensureThread() {
  if (ended_ || isForked() || wake_->fd() < 0) {
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
  if (!isForked()) {
    mailbox_.remove(watch.id);
  }
}

void ReachabilityWatcher::observe(const std::string& host, int port, bool connected) {
  if (running_ && !isForked()) {
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
  if (isForked()) {
    // Leaked on purpose: the thread is not in this process, so it can be neither joined nor let go.
    static_cast<void>(thread_.release());
    return;
  }
  mailbox_.stop();
  thread_->join();
  thread_.reset();
}

}  // namespace kesu
