#include "platform/linux/http/HttpSockets.h"

#include <algorithm>
#include <limits>

namespace kesu {
namespace {

// How soon new work is noticed where the process had no descriptor left for the wake event.
constexpr int kBlindWaitMilliseconds = 50;

short pollEventsOf(int what) {
  const int events = (what & CURL_POLL_IN ? POLLIN : 0) | (what & CURL_POLL_OUT ? POLLOUT : 0);
  return static_cast<short>(events);
}

// An error or a hang-up counts as what is waited for: libcurl finds it when it reads or writes.
int readiness(const pollfd& polled) {
  const int found = polled.revents & ~(POLLIN | POLLOUT) ? polled.events : polled.revents;
  return (found & POLLIN ? CURL_CSELECT_IN : 0) | (found & POLLOUT ? CURL_CSELECT_OUT : 0);
}

}  // namespace

HttpSockets::HttpSockets() : watched_{{wakeEvent_.fd(), POLLIN, 0}} {}

void HttpSockets::attach(CURLM* multi) {
  multi_ = multi;
  curl_multi_setopt(multi, CURLMOPT_SOCKETFUNCTION, &HttpSockets::onSocket);
  curl_multi_setopt(multi, CURLMOPT_SOCKETDATA, this);
  curl_multi_setopt(multi, CURLMOPT_TIMERFUNCTION, &HttpSockets::onTimer);
  curl_multi_setopt(multi, CURLMOPT_TIMERDATA, this);
}

void HttpSockets::wait(std::optional<Clock::time_point> until) {
  if (timerDue_) {
    until = std::min(until.value_or(*timerDue_), *timerDue_);
  }
  int timeout = wakeEvent_.fd() >= 0 ? -1 : kBlindWaitMilliseconds;
  if (until) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*until - Clock::now()).count();
    const int longest = timeout >= 0 ? timeout : std::numeric_limits<int>::max();
    timeout = static_cast<int>(std::clamp<decltype(left)>(left, 0, longest));
  }
  if (::poll(watched_.data(), watched_.size(), timeout) <= 0) {
    return;
  }
  if (watched_.front().revents != 0) {
    wakeEvent_.clear();
  }
  for (auto polled = watched_.begin() + 1; polled != watched_.end(); ++polled) {
    if (polled->revents != 0) {
      ready_.emplace_back(polled->fd, readiness(*polled));
    }
  }
}

void HttpSockets::run() {
  int running = 0;
  for (const auto& [socket, what] : ready_) {  // One that is closed meanwhile is unknown to libcurl, which ignores it.
    curl_multi_socket_action(multi_, socket, what, &running);
  }
  ready_.clear();
  if (timerDue_ && *timerDue_ <= Clock::now()) {
    timerDue_.reset();  // Before: libcurl sets it again.
    curl_multi_socket_action(multi_, CURL_SOCKET_TIMEOUT, 0, &running);
  }
}

void HttpSockets::watch(curl_socket_t socket, int what) {
  const auto found = std::find_if(watched_.begin() + 1, watched_.end(),
                                  [socket](const pollfd& watched) { return watched.fd == socket; });
  if (what == CURL_POLL_REMOVE) {
    if (found != watched_.end()) {
      watched_.erase(found);
    }
  } else if (found != watched_.end()) {
    found->events = pollEventsOf(what);
  } else {
    watched_.push_back({socket, pollEventsOf(what), 0});
  }
}

int HttpSockets::onSocket(CURL*, curl_socket_t socket, int what, void* self, void*) {
  static_cast<HttpSockets*>(self)->watch(socket, what);
  return 0;
}

int HttpSockets::onTimer(CURLM*, long milliseconds, void* self) {
  auto& due = static_cast<HttpSockets*>(self)->timerDue_;
  due.reset();
  if (milliseconds >= 0) {
    due = Clock::now() + std::chrono::milliseconds(milliseconds);
  }
  return 0;
}

}  // namespace kesu
