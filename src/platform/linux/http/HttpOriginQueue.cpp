#include "platform/linux/http/HttpOriginQueue.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kesu {

HttpOriginQueue::HttpOriginQueue(std::size_t connectionsPerHost, std::size_t multiplexed)
    : connectionsPerHost_(std::max<std::size_t>(connectionsPerHost, 1)),
      multiplexedLimit_(std::max(multiplexed, connectionsPerHost_)) {}

void HttpOriginQueue::add(std::unique_ptr<HttpJob> job) {
  Lane& lane = lanes_[job->origin];
  lane.waiting.push_back(std::move(job));
}

void HttpOriginQueue::addFirst(std::unique_ptr<HttpJob> job) {
  Lane& lane = lanes_[job->origin];
  lane.waiting.push_front(std::move(job));
}

bool HttpOriginQueue::mayStart(const Lane& lane) const {
  return !lane.waiting.empty() && lane.started < (lane.multiplexed ? multiplexedLimit_ : connectionsPerHost_);
}

std::unique_ptr<HttpJob> HttpOriginQueue::startNext() {
  for (auto& [origin, lane] : lanes_) {
    if (mayStart(lane)) {
      std::unique_ptr<HttpJob> job = std::move(lane.waiting.front());
      lane.waiting.pop_front();
      ++lane.started;
      return job;
    }
  }
  return nullptr;
}

void HttpOriginQueue::ended(const HttpOrigin& origin) {
  const auto found = lanes_.find(origin);
  if (found == lanes_.end()) {
    return;
  }
  Lane& lane = found->second;
  lane.started -= lane.started > 0 ? 1U : 0U;
  // A multiplexed one is kept: the next burst may start all at once.
  if (lane.started == 0 && lane.waiting.empty() && !lane.multiplexed) {
    lanes_.erase(found);
  }
}

void HttpOriginQueue::setMultiplexed(const HttpOrigin& origin, bool multiplexed) {
  lanes_[origin].multiplexed = multiplexed;
}

bool HttpOriginQueue::isMultiplexed(const HttpOrigin& origin) const {
  const auto found = lanes_.find(origin);
  return found != lanes_.end() && found->second.multiplexed;
}

std::vector<std::unique_ptr<HttpJob>> HttpOriginQueue::takeWaiting(const HttpOrigin& origin) {
  std::vector<std::unique_ptr<HttpJob>> taken;
  if (const auto found = lanes_.find(origin); found != lanes_.end()) {
    std::deque<std::unique_ptr<HttpJob>> waiting = std::exchange(found->second.waiting, {});
    taken.assign(std::make_move_iterator(waiting.begin()), std::make_move_iterator(waiting.end()));
  }
  return taken;
}

std::vector<std::unique_ptr<HttpJob>> HttpOriginQueue::takeAllWaiting() {
  std::vector<std::unique_ptr<HttpJob>> taken;
  for (auto& [origin, lane] : lanes_) {
    std::move(lane.waiting.begin(), lane.waiting.end(), std::back_inserter(taken));
    lane.waiting.clear();
  }
  return taken;
}

std::string HttpOriginQueue::blockedUrl() const {
  const auto blocked = std::find_if(lanes_.begin(), lanes_.end(), [this](const auto& entry) {
    return !entry.second.waiting.empty() && !mayStart(entry.second);
  });
  return blocked == lanes_.end() ? std::string() : blocked->second.waiting.front()->request.url;
}

bool HttpOriginQueue::hasWaiting() const {
  return std::any_of(lanes_.begin(), lanes_.end(), [](const auto& entry) { return !entry.second.waiting.empty(); });
}

}  // namespace kesu
