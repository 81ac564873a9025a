#include "platform/linux/http/HttpEngine.h"

#include <algorithm>
#include <utility>

#include "platform/linux/http/HttpRedirect.h"

namespace kesu {
namespace {

// Enough for the usual load; more would only keep memory after a burst (20 KB per transfer).
constexpr std::size_t kMaxSpareTransfers = 16;
constexpr long kMaxKeptConnections = 16;

constexpr double kLongestSeconds = 1e6;  // Keeps every sum within the range of the clock.

HttpEngine::Clock::duration durationOf(double seconds) {
  const double inRange = seconds > 0 ? std::min(seconds, kLongestSeconds) : 0.0;  // Neither for what is no number.
  return std::chrono::ceil<HttpEngine::Clock::duration>(std::chrono::duration<double>(inRange));
}

}  // namespace

HttpEngine::HttpEngine(const LinuxHttpClientOptions& options, Finish finish)
    : options_(options),
      idleTimeout_(durationOf(options.idleTimeoutSeconds)),
      finish_(std::move(finish)),
      trust_(options.caFile, options.systemCaFile),
      multi_(curl_multi_init()),
      queue_(options.maxConnectionsPerHost, options.maxAdmitted) {
  curl_multi_setopt(multi_.get(), CURLMOPT_MAX_HOST_CONNECTIONS, static_cast<long>(options.maxConnectionsPerHost));
  curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, kMaxKeptConnections);
  sockets_.attach(multi_.get());
}

// libcurl wants easy handles removed from the multi handle before either is destroyed.
HttpEngine::~HttpEngine() {
  for (const auto& transfer : active_) {
    curl_multi_remove_handle(multi_.get(), transfer->handle());
  }
}

void HttpEngine::add(std::unique_ptr<HttpJob> job) {
  const auto known = urls_.find(job->request.url);
  if (known->url) {
    prepareJob(*job, *known->url);
    queue_.add(std::move(job));
  } else {
    finish_(std::move(job), failedReply(HttpError::BadUrl, "Not an absolute http or https URL"), std::nullopt);
  }
}

bool HttpEngine::step() {
  startWaiting();
  sockets_.run();
  const bool finished = finishDone();
  const bool expired = expireLate();
  if (!hasWork()) {
    heard_.clear();  // What an origin sent before a pause says nothing about it afterwards.
  }
  return (finished || expired) && queue_.hasWaiting();
}

void HttpEngine::wait(std::optional<Clock::time_point> until) {
  for (const auto& transfer : active_) {
    const Clock::time_point due = transfer->due(idleTimeout_);  // libcurl itself watches the time limit for connecting.
    until = std::min(until.value_or(due), due);
  }
  sockets_.wait(until);
}

void HttpEngine::cancelAll() {
  const HttpReply cancelled = failedReply(HttpError::Cancelled, "The client was shut down");
  for (HttpTransfer* const transfer : activeTransfers()) {
    finish_(retire(*transfer), cancelled, std::nullopt);
  }
  failAll(queue_.takeAllWaiting(), cancelled);
}

void HttpEngine::startWaiting() {
  while (std::unique_ptr<HttpJob> job = queue_.startNext()) {
    if (spare_.empty()) {
      spare_.push_back(std::make_unique<HttpTransfer>(options_, trust_));
    }
    std::unique_ptr<HttpTransfer> transfer = std::move(spare_.back());
    spare_.pop_back();
    if (!transfer->usable()) {
      queue_.ended(job->origin);
      finish_(std::move(job), failedReply(HttpError::CannotConnect, "Out of memory"), std::nullopt);
      continue;
    }
    if (!job->deadline) {
      job->deadline =
          Clock::now() + durationOf(std::min(job->request.deadlineSeconds, options_.longestDeadlineSeconds));
    }
    auto url = urls_.find(job->request.url);
    const bool multiplexed = queue_.isMultiplexed(job->origin);
    transfer->load(std::move(job), std::move(url), multiplexed);
    curl_multi_add_handle(multi_.get(), transfer->handle());
    active_.push_back(std::move(transfer));
  }
}

bool HttpEngine::finishDone() {
  bool any = false;
  int left = 0;
  while (const CURLMsg* const message = curl_multi_info_read(multi_.get(), &left)) {
    HttpTransfer& transfer = HttpTransfer::of(message->easy_handle);
    end(transfer, transfer.takeReply(message->data.result));
    any = true;
  }
  return any;
}

bool HttpEngine::expireLate() {
  const Clock::time_point now = Clock::now();
  const auto isLate = [&](const auto& transfer) { return transfer->due(idleTimeout_) <= now; };
  if (std::none_of(active_.begin(), active_.end(), isLate)) {
    return false;  // Nearly always: without a copy.
  }
  for (HttpTransfer* const transfer : activeTransfers()) {
    if (isLate(transfer)) {
      expire(*transfer, now);
    }
  }
  return true;
}

void HttpEngine::expire(HttpTransfer& transfer, Clock::time_point now) {
  const bool isAtDeadline = transfer.job().deadline <= now;
  const HttpReply timedOut = failedReply(
      HttpError::TimedOut, isAtDeadline ? "The request took too long" : "Nothing was sent or received for too long");
  const HttpOrigin origin = transfer.job().origin;
  const Clock::time_point started = transfer.started();
  HttpReply reply = transfer.takeReply(CURLE_ABORTED_BY_CALLBACK);
  reply.errorText = timedOut.errorText;
  end(transfer, std::move(reply));
  // Requests behind a host that sends nothing on any connection would each wait as long again. So would those behind a
  // host that sends and sends but has ended no reply, where it had at least the idle timeout for one.
  if (isAtDeadline ? now - started >= idleTimeout_ && !hasReplied(origin, started)
                   : isSilent(origin, now - idleTimeout_)) {
    failAll(queue_.takeWaiting(origin), timedOut);
  }
}

bool HttpEngine::isSilent(const HttpOrigin& origin, Clock::time_point since) const {
  const auto heard = heard_.find(origin);
  return (heard == heard_.end() || heard->second.lastByte <= since) &&
         std::none_of(active_.begin(), active_.end(), [&](const auto& transfer) {
           return transfer->job().origin == origin && transfer->lastHeard() > since;
         });
}

bool HttpEngine::hasReplied(const HttpOrigin& origin, Clock::time_point since) const {
  const auto heard = heard_.find(origin);
  return heard != heard_.end() && heard->second.lastReply > since;
}

std::unique_ptr<HttpJob> HttpEngine::retire(HttpTransfer& transfer) {
  curl_multi_remove_handle(multi_.get(), transfer.handle());
  std::unique_ptr<HttpJob> job = transfer.unload();
  queue_.ended(job->origin);
  const auto found = std::find_if(active_.begin(), active_.end(), [&](const auto& a) { return a.get() == &transfer; });
  if (spare_.size() < kMaxSpareTransfers) {
    spare_.push_back(std::move(*found));
  }
  active_.erase(found);
  return job;
}

void HttpEngine::end(HttpTransfer& transfer, HttpReply reply) {
  const std::optional<bool> connected = transfer.attempt(reply);
  const std::string location = isRedirect(reply.status) ? transfer.location() : std::string();
  // One that reaches its deadline while it connects says nothing about the others.
  const bool unreachable =
      !transfer.connected() && reply.error != HttpError::None && reply.error != HttpError::TimedOut;
  if (reply.status != 0) {
    noteReply(transfer, reply.error);
  }
  const HttpOrigin origin = unreachable ? transfer.job().origin : HttpOrigin();
  const HttpReply shared = unreachable ? reply : HttpReply();
  // First the job that failed, so that its reply comes before those of the jobs that waited behind it.
  finishOrRedirect(retire(transfer), std::move(reply), connected, location);
  if (unreachable) {
    failUnconnected(origin, shared);
  }
}

void HttpEngine::noteReply(const HttpTransfer& transfer, HttpError error) {
  const HttpOrigin& origin = transfer.job().origin;
  queue_.setMultiplexed(origin, transfer.multiplexed());
  Heard& heard = heard_[origin];
  heard.lastByte = transfer.lastHeard();
  if (error != HttpError::TimedOut) {
    heard.lastReply = transfer.lastHeard();
  }
}

void HttpEngine::finishOrRedirect(std::unique_ptr<HttpJob> job, HttpReply reply, std::optional<bool> connected,
                                  const std::string& location) {
  if (reply.error == HttpError::None) {
    switch (applyRedirect(*job, reply.status, location)) {
      case HttpRedirectVerdict::Final:
        break;
      case HttpRedirectVerdict::Follow:
        queue_.addFirst(std::move(job));  // It has waited already.
        return;
      case HttpRedirectVerdict::Refuse:
        reply.error = HttpError::BadRedirect;
        reply.errorText = "The redirect must not be followed";
        reply.body.reset();
        break;
    }
  }
  finish_(std::move(job), std::move(reply), connected);
}

// When a connection cannot be made, the others would each wait for the same failure: 5,000 times 60 s.
void HttpEngine::failUnconnected(const HttpOrigin& origin, const HttpReply& reply) {
  for (HttpTransfer* const transfer : activeTransfers()) {
    if (!transfer->connected() && transfer->job().origin == origin) {
      finish_(retire(*transfer), reply, std::nullopt);
    }
  }
  failAll(queue_.takeWaiting(origin), reply);
}

void HttpEngine::failAll(std::vector<std::unique_ptr<HttpJob>> jobs, const HttpReply& reply) {
  for (auto& job : jobs) {
    finish_(std::move(job), reply, std::nullopt);
  }
}

std::vector<HttpTransfer*> HttpEngine::activeTransfers() const {
  std::vector<HttpTransfer*> transfers;
  transfers.reserve(active_.size());
  for (const auto& transfer : active_) {
    transfers.push_back(transfer.get());
  }
  return transfers;
}

}  // namespace kesu
