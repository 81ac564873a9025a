#pragma once

#include <curl/curl.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/http/HttpOriginQueue.h"
#include "platform/linux/http/HttpSockets.h"
#include "platform/linux/http/HttpTransfer.h"
#include "platform/linux/http/HttpTrust.h"
#include "platform/linux/http/HttpUrlCache.h"
#include "platform/linux/http/LinuxHttpClientOptions.h"

namespace kesu {

/// The work of the network thread: receives jobs, runs them through libcurl and finishes them. Confined to that thread,
/// but for wake().
class HttpEngine {
 public:
  using Clock = HttpTransfer::Clock;
  /// Receives each job once it has ended, on the network thread. `connected`: how the attempt to connect ended; nothing
  /// when none was made for this very job.
  using Finish = std::function<void(std::unique_ptr<HttpJob> job, HttpReply reply, std::optional<bool> connected)>;

  HttpEngine(const LinuxHttpClientOptions& options, Finish finish);
  ~HttpEngine();

  HttpEngine(const HttpEngine&) = delete;
  HttpEngine& operator=(const HttpEngine&) = delete;

  /// Ends the present wait(), or the next one. Any thread.
  void wake() const { sockets_.wake(); }

  void add(std::unique_ptr<HttpJob> job);

  /// Starts, continues and finishes jobs, without waiting. Returns whether to call it again at once.
  bool step();

  /// Sleeps until the next step() is due: for the network, a wake-up, a time limit of the engine, or `until`.
  void wait(std::optional<Clock::time_point> until);

  /// A URL whose jobs must wait behind others at the moment; empty when there is none.
  std::string blockedUrl() const { return queue_.blockedUrl(); }

  bool hasWork() const { return !active_.empty() || queue_.hasWaiting(); }

  /// Fails all remaining jobs with HttpError::Cancelled.
  void cancelAll();

 private:
  struct Cleanup {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
  };

  void startWaiting();
  bool finishDone();
  bool expireLate();
  void expire(HttpTransfer& transfer, Clock::time_point now);
  bool isSilent(const HttpOrigin& origin, Clock::time_point since) const;
  bool hasReplied(const HttpOrigin& origin, Clock::time_point since) const;

  /// Removes a transfer from libcurl and the active ones, keeps it for another job, and returns its job.
  std::unique_ptr<HttpJob> retire(HttpTransfer& transfer);
  void end(HttpTransfer& transfer, HttpReply reply);
  void noteReply(const HttpTransfer& transfer, HttpError error);
  void finishOrRedirect(std::unique_ptr<HttpJob> job, HttpReply reply, std::optional<bool> connected,
                        const std::string& location);
  void failUnconnected(const HttpOrigin& origin, const HttpReply& reply);
  void failAll(std::vector<std::unique_ptr<HttpJob>> jobs, const HttpReply& reply);
  std::vector<HttpTransfer*> activeTransfers() const;

  /// What came from an origin; cleared when there is no work.
  struct Heard {
    Clock::time_point lastByte;
    Clock::time_point lastReply;  ///< When a transfer last ended by itself, with a status.
  };

  const LinuxHttpClientOptions options_;
  const Clock::duration idleTimeout_;
  Finish finish_;
  HttpUrlCache urls_;
  HttpTrust trust_;
  HttpSockets sockets_;
  std::unique_ptr<CURLM, Cleanup> multi_;
  HttpOriginQueue queue_;
  std::vector<std::unique_ptr<HttpTransfer>> active_;
  std::vector<std::unique_ptr<HttpTransfer>> spare_;
  std::map<HttpOrigin, Heard> heard_;
};

}  // namespace kesu
