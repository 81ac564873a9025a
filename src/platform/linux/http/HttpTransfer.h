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

/// One attempt to reach a host, for the connect observer.
struct HttpAttempt {
  std::string host;
  int port = 0;
  bool connected = false;
};

/// One easy handle of libcurl and the job it carries at the moment. The handle's fixed settings are made once; a
/// transfer is used again for the next job, which keeps what libcurl has allocated. Confined to the network thread.
class HttpTransfer {
 public:
  using Clock = std::chrono::steady_clock;

  HttpTransfer(const LinuxHttpClientOptions& options, HttpTrust& trust);
  ~HttpTransfer();

  HttpTransfer(const HttpTransfer&) = delete;
  HttpTransfer& operator=(const HttpTransfer&) = delete;

  /// Whether libcurl had memory for it; an unusable transfer must not be given a job.
  bool usable() const { return handle_ != nullptr; }
  CURL* handle() const { return handle_.get(); }

  /// Takes a job and sets the handle up for it; the caller then adds the handle to the multi handle.
  void load(std::unique_ptr<HttpJob> job);
  /// Gives the job back, once the handle is out of the multi handle.
  std::unique_ptr<HttpJob> unload();
  const HttpJob& job() const { return *job_; }

  /// The transfer that a handle belongs to.
  static HttpTransfer& of(CURL* handle);

  /// What came of the transfer, given libcurl's result; CURLE_ABORTED_BY_CALLBACK stands for the idle timeout. Moves
  /// the body out: once a job.
  HttpReply takeReply(CURLcode result);
  /// The attempt that the transfer was; nothing when it was ended before it got so far.
  std::optional<HttpAttempt> attempt(const HttpReply& reply) const;
  /// Where the reply points (absolute); empty when nowhere.
  std::string location() const;
  /// Whether the reply came over a connection that carries many requests at once.
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
  std::unique_ptr<CURL, Cleanup> handle_;  ///< Goes first: it points into all of the above.
};

}  // namespace kesu
