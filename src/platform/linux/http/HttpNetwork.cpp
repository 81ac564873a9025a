#include "platform/linux/http/HttpNetwork.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/linux/base/ServiceThread.h"
#include "platform/linux/http/HttpExit.h"

namespace kesu {
namespace {

constexpr double kMaxGraceSeconds = 3600;  // Keeps "for ever" within the range of the clock.

// As many as a sender has under way at a time. More are left over by one that has stopped.
constexpr std::size_t kMostFinished = 256;

}  // namespace

HttpNetwork::HttpNetwork(MainLoop& loop, LinuxHttpClientOptions options)
    : options_(std::move(options)), delivery_(loop) {}

HttpNetwork::~HttpNetwork() {
  HttpExit::remove(*this);
  stop(0);
}

void HttpNetwork::send(HttpRequest request, HttpClient::Completion completion, bool isInBackground) {
  std::call_once(registered_, [this] { HttpExit::add(*this); });  // Outside mutex_, which an exit takes as well.
  delivery_.expect();
  auto job = std::make_unique<HttpJob>();
  job->request = std::move(request);
  job->completion = std::move(completion);
  job->isInBackground = isInBackground;
  bool wakes = false;
  if (!accept(job, wakes)) {
    delivery_.refuse(*job);
  } else if (wakes) {
    wake();
  }
}

// Leaves the job with the caller after stop(), else a finished one to destroy: the thread that made the many small
// pieces of a job also frees them. If the network thread did, both would wait for one lock of the allocator all the
// time. `wakes`: the thread sleeps, and the job is a reason to wake it.
bool HttpNetwork::accept(std::unique_ptr<HttpJob>& job, bool& wakes) {
  const MutexLock lock(mutex_);
  if (stopTime_ || !startThread()) {
    return false;
  }
  wakes = isAsleep_ && (blockedUrl_.empty() || job->request.url != blockedUrl_);
  isAsleep_ = isAsleep_ && !wakes;
  inbox_.push_back(std::move(job));
  if (!finished_.empty()) {
    job = std::move(finished_.back());
    finished_.pop_back();
  }
  return true;
}

// Without the mutex of the inbox: the woken thread needs it at once.
void HttpNetwork::wake() {
  const MutexLock lock(wakeMutex_);
  if (wakeTarget_ != nullptr) {
    wakeTarget_->wake();
  }
}

bool HttpNetwork::startThread() {
  if (!thread_.joinable()) {
    thread_ = startServiceThread("kesu-http", [this] { run(); });
  }
  return thread_.joinable();
}

void HttpNetwork::stop(double graceSeconds) {
  const MutexLock stopping(stopMutex_);
  std::thread ending;
  {
    const MutexLock lock(mutex_);
    if (!stopTime_) {
      const std::chrono::duration<double> grace(std::clamp(graceSeconds, 0.0, kMaxGraceSeconds));
      stopTime_ = Clock::now() + std::chrono::ceil<Clock::duration>(grace);
    }
    ending.swap(thread_);
  }
  wake();
  if (ending.joinable()) {
    ending.join();
  }
}

void HttpNetwork::run() {
  curl_global_init(CURL_GLOBAL_DEFAULT);
  HttpEngine engine(options_, [this](std::unique_ptr<HttpJob> job, HttpReply reply, std::optional<bool> connected) {
    delivery_.deliver(*job, std::move(reply), connected);
    ended_.push_back(std::move(job));
  });
  setWakeTarget(&engine);
  while (true) {
    const auto end = takeInbox(engine);
    if (end && (!engine.hasWork() || Clock::now() >= *end)) {
      break;
    }
    if (!engine.step() && (engine.hasWork() || !end) && fallAsleep(engine)) {
      engine.wait(end);
    }
  }
  setWakeTarget(nullptr);
  engine.cancelAll();
  ended_.clear();
}

// Returns false when the inbox is not empty.
bool HttpNetwork::fallAsleep(const HttpEngine& engine) {
  std::vector<std::unique_ptr<HttpJob>> surplus;  // Destroyed without the mutex.
  const MutexLock lock(mutex_);
  std::move(ended_.begin(), ended_.end(), std::back_inserter(finished_));
  ended_.clear();
  if (!engine.hasWork() || finished_.size() > kMostFinished) {
    surplus.swap(finished_);
  }
  isAsleep_ = inbox_.empty();
  blockedUrl_ = engine.blockedUrl();
  return isAsleep_;
}

// Returns when to stop, once stop() was called.
std::optional<HttpNetwork::Clock::time_point> HttpNetwork::takeInbox(HttpEngine& engine) {
  std::vector<std::unique_ptr<HttpJob>> jobs;
  std::optional<Clock::time_point> end;
  {
    const MutexLock lock(mutex_);
    jobs.swap(inbox_);
    isAsleep_ = false;
    end = stopTime_;
  }
  for (auto& job : jobs) {
    engine.add(std::move(job));
  }
  return end;
}

void HttpNetwork::setWakeTarget(const HttpEngine* engine) {
  const MutexLock lock(wakeMutex_);
  wakeTarget_ = engine;
}

}  // namespace kesu
