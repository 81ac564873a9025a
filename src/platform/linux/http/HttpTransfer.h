#pragma once

#include <curl/curl.h>
#include <kesu/platform/HttpClient.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/linux/http/HttpHeaderList.h"
#include "platform/linux/http/HttpJob.h"
#include "platform/linux/http/HttpTrust.h"
#include "platform/linux/http/HttpUrlCache.h"
#include "platform/linux/http/LinuxHttpClientOptions.h"

namespace kesu {

/// One easy handle of libcurl and its present job. The fixed settings of the handle are made once, those of a job where
/// they differ from the job before; what libcurl has allocated is kept. Confined to the network thread.
class HttpTransfer {
 public:
  using Clock = std::chrono::steady_clock;

  HttpTransfer(const LinuxHttpClientOptions& options, HttpTrust& trust);
  ~HttpTransfer();

  HttpTransfer(const HttpTransfer&) = delete;
  HttpTransfer& operator=(const HttpTransfer&) = delete;

  /// Whether libcurl had memory for it. An unusable transfer must not get a job.
  bool usable() const { return handle_ != nullptr; }
  CURL* handle() const { return handle_.get(); }

  /// Sets the handle up for a job, whose request names `url`; the caller then adds the handle to the multi handle.
  /// `multiplexed`: the origin is known to serve many requests over one connection.
  void load(std::unique_ptr<HttpJob> job, std::shared_ptr<const HttpKnownUrl> url, bool multiplexed);
  /// Returns the job, once the handle was removed from the multi handle.
  std::unique_ptr<HttpJob> unload();
  const HttpJob& job() const { return *job_; }

  /// The transfer that a handle belongs to.
  static HttpTransfer& of(CURL* handle);

  /// Returns the reply, given libcurl's result; CURLE_OPERATION_TIMEDOUT means the connect timeout,
  /// CURLE_ABORTED_BY_CALLBACK a time limit of ours. Moves the body out: once per job.
  HttpReply takeReply(CURLcode result);
  /// How the attempt to connect ended; nothing when the transfer ended before.
  std::optional<bool> attempt(const HttpReply& reply) const;
  /// The absolute target of a redirect; empty when there is none.
  std::string location() const;
  /// Whether the connection carries many requests at once.
  bool multiplexed() const;

  /// Whether there is (after takeReply(): was) a connection to send the request over. Before that, only the connect
  /// timeout counts.
  bool connected() const { return progress_.connected; }
  /// When the last byte was sent or received, and when the last one was received (the epoch for never).
  Clock::time_point lastActivity() const { return progress_.activity; }
  Clock::time_point lastHeard() const { return progress_.heard; }
  Clock::time_point started() const { return progress_.started; }
  /// When a time limit of ours ends it, unless something happens before.
  Clock::time_point due(Clock::duration idleTimeout) const;

 private:
  /// Who ended the body.
  enum class BodyEnd {
    Server,    ///< The server, or an error.
    Cut,       ///< We did: nobody reads more of it.
    TooLarge,  ///< We did: it is longer than HttpRequest::replyLimit.
  };
  /// What has happened to the present job.
  struct Progress {
    bool multiplexed = false;  ///< Its origin is known to be.
    bool connected = false;
    int attempts = 0;  ///< How often libcurl had a connection and began to send.
    BodyEnd bodyEnd = BodyEnd::Server;
    curl_off_t moved = 0;  ///< Body bytes sent and received, as last seen.
    Clock::time_point started;
    Clock::time_point activity;
    Clock::time_point heard;
  };
  struct Cleanup {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
  };

  void setUp(const LinuxHttpClientOptions& options, HttpTrust& trust);
  void setUrl(std::shared_ptr<const HttpKnownUrl> url);
  void setMethod();
  void setHeaders();
  HttpError errorOf(CURLcode result) const;
  void heard();

  int beginAttempt();
  bool takeBody(const char* data, std::size_t length);

  static int onConnected(void* self, char*, char*, int, int);
  static std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t onBody(char* data, std::size_t size, std::size_t count, void* self);
  static int onProgress(void* self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent);

  std::shared_ptr<const HttpKnownUrl> url_;
  HttpHeaderList headers_;
  std::pair<std::string, bool> method_;  ///< For which the handle is set: a method, and whether it carries a body.
  std::unique_ptr<HttpJob> job_;
  std::string body_;
  std::string errorText_;  ///< libcurl writes into it: always CURL_ERROR_SIZE long.
  Progress progress_;
  std::unique_ptr<CURL, Cleanup> handle_;  ///< Destroyed first: it points into all of the above.
};

}  // namespace kesu
