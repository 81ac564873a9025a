#pragma once

#include <curl/curl.h>
#include <kesu/platform/HttpClient.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/http/HttpJob.h"
#include "platform/linux/http/HttpTrust.h"
#include "platform/linux/http/LinuxHttpClientOptions.h"

namespace kesu {

/// One attempt to connect to a host, for the connect observer.
struct HttpAttempt {
  std::string host;
  int port = 0;
  bool connected = false;
};

/// One easy handle of libcurl and its present job. The fixed settings of the handle are made once; the transfer is used
/// again for the next job, which keeps what libcurl has allocated. Confined to the network thread.
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

  /// Sets the handle up for a job; the caller then adds the handle to the multi handle.
  void load(std::unique_ptr<HttpJob> job);
  /// Returns the job, once the handle was removed from the multi handle.
  std::unique_ptr<HttpJob> unload();
  const HttpJob& job() const { return *job_; }

  /// The transfer that a handle belongs to.
  static HttpTransfer& of(CURL* handle);

  /// Returns the reply, given libcurl's result; CURLE_ABORTED_BY_CALLBACK means the idle timeout. Moves the body out:
  /// once per job.
  HttpReply takeReply(CURLcode result);
  /// The attempt to connect; nothing when the transfer ended before.
  std::optional<HttpAttempt> attempt(const HttpReply& reply) const;
  /// The absolute target of a redirect; empty when there is none.
  std::string location() const;
  /// Whether the connection carries many requests at once.
  bool multiplexed() const;

  /// Whether there is (after takeReply(): was) a connection to send the request over. Before that, only the connect
  /// timeout counts.
  bool connected() const { return connected_; }
  /// When the last byte was sent or received, and when the last one was received (the epoch for never).
  Clock::time_point lastActivity() const { return lastActivity_; }
  Clock::time_point lastHeard() const { return lastHeard_; }

 private:
  struct Cleanup {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };

  void setUp(const LinuxHttpClientOptions& options, HttpTrust& trust);
  void setMethod();
  void setHeaders();
  HttpError errorOf(CURLcode result) const;
  void heard();

  static int onConnected(void* self, char*, char*, int, int);
  static std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t onBody(char* data, std::size_t size, std::size_t count, void* self);
  static int onProgress(void* self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent);

  std::unique_ptr<curl_slist, Cleanup> headers_;
  std::unique_ptr<HttpJob> job_;
  std::string body_;
  std::string errorText_;  ///< libcurl writes into it: always CURL_ERROR_SIZE long.
  bool connected_ = false;
  bool tooLarge_ = false;
  curl_off_t moved_ = 0;  ///< Body bytes sent and received, as last seen.
  Clock::time_point lastActivity_;
  Clock::time_point lastHeard_;
  std::unique_ptr<CURL, Cleanup> handle_;  ///< Destroyed first: it points into all of the above.
};

}  // namespace kesu
