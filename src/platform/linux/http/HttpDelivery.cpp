#include "platform/linux/http/HttpDelivery.h"

#include <algorithm>
#include <utility>

namespace kesu {
namespace {

// Reachability learns from every failure and from the first success after it. More successes only cost the main loop
// time; one per second covers a change of the network, after which it listens again.
constexpr std::chrono::seconds kSuccessIsOld{1};

// Images may come from many hosts; forgetting one costs a task more.
constexpr std::size_t kMaxToldOrigins = 16;

}  // namespace

HttpDelivery::HttpDelivery(MainLoop& loop) : loop_(loop) {}

void HttpDelivery::State::tell(const std::string& host, int port, bool connected) const {
  if (observer) {
    const HttpClient::ConnectObserver called = observer;  // It may replace itself.
    called(host, port, connected);
  }
}

void HttpDelivery::deliver(HttpJob& job, HttpReply reply, std::optional<bool> connected) {
  const Told* const news = connected ? noteNews(job.origin, *connected) : nullptr;
  if (!job.isInBackground) {
    post(job, std::move(reply), connected);
    return;
  }
  if (news != nullptr) {
    postAttempt(*news);
  }
  --state_->pending;
  if (job.completion) {
    job.completion(std::move(reply));
  }
}

void HttpDelivery::refuse(HttpJob& job) {
  post(job, failedReply(HttpError::Cancelled, "The client was shut down"), std::nullopt);
}

void HttpDelivery::post(HttpJob& job, HttpReply reply, std::optional<bool> connected) {
  loop_.post([state = state_, completion = std::move(job.completion), reply = std::move(reply), connected,
              host = connected ? job.origin.host : std::string(), port = job.origin.port]() mutable {
    --state->pending;
    if (connected) {
      state->tell(host, port, *connected);
    }
    if (completion) {
      completion(std::move(reply));
    }
  });
}

void HttpDelivery::postAttempt(const Told& told) {
  *told.isWaiting = true;
  loop_.post(
      [state = state_, isWaiting = told.isWaiting, host = told.host, port = told.port, connected = told.connected] {
        *isWaiting = false;  // Before: what happens from now on is news.
        state->tell(host, port, connected);
      });
}

// Takes note of an attempt. Returns nothing when it says what the observer knows, or will know once somebody pumps.
HttpDelivery::Told* HttpDelivery::noteNews(const HttpOrigin& origin, bool connected) {
  Told& told = toldOf(origin);
  const Clock::time_point now = Clock::now();
  const bool isKnown = told.connected == connected && (*told.isWaiting || (connected && now - told.at < kSuccessIsOld));
  if (isKnown) {
    return nullptr;
  }
  told.connected = connected;
  told.at = now;
  return &told;
}

HttpDelivery::Told& HttpDelivery::toldOf(const HttpOrigin& origin) {
  const auto found = std::find_if(told_.begin(), told_.end(), [&](const Told& told) {
    return told.port == origin.port && told.host == origin.host;
  });
  if (found != told_.end()) {
    return *found;
  }
  if (told_.size() >= kMaxToldOrigins) {
    told_.erase(told_.begin());
  }
  told_.push_back({origin.host, origin.port, false, {}, std::make_shared<std::atomic<bool>>(false)});
  return told_.back();
}

}  // namespace kesu
