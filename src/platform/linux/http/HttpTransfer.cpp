#include "platform/linux/http/HttpTransfer.h"

#include <sys/socket.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/linux/http/HttpHeaderLines.h"

namespace kesu {
namespace {

constexpr int kMaxAttempts = 2;

// What collectors answer is shorter.
constexpr std::size_t kIgnoredBodyBytes = std::size_t{16} * 1024;

// A program that the host starts must not inherit our connections.
curl_socket_t openSocket(void*, curlsocktype, curl_sockaddr* address) {
  return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

long milliseconds(double seconds) {
  return std::max(1L, std::lround(seconds * 1000));
}

long responseCode(CURL* handle) {
  long status = 0;
  curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
  return status < 200 ? 0 : status;  // An interim reply is no answer.
}

bool resolved(CURL* handle) {
  curl_off_t microseconds = 0;
  curl_easy_getinfo(handle, CURLINFO_NAMELOOKUP_TIME_T, &microseconds);
  return microseconds > 0;
}

bool failedToConnect(HttpError error) {
  return error == HttpError::CannotResolve || error == HttpError::CannotConnect || error == HttpError::Tls;
}

}  // namespace

HttpTransfer::HttpTransfer(const LinuxHttpClientOptions& options, HttpTrust& trust)
    : errorText_(CURL_ERROR_SIZE, '\0'), handle_(curl_easy_init()) {
  if (usable()) {
    setUp(options, trust);
  }
}

HttpTransfer::~HttpTransfer() = default;

void HttpTransfer::setUp(const LinuxHttpClientOptions& options, HttpTrust& trust) {
  CURL* const handle = handle_.get();
  curl_easy_setopt(handle, CURLOPT_PRIVATE, this);
  curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, errorText_.data());
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 0L);  // HttpRedirect decides.
  curl_easy_setopt(handle, CURLOPT_PROXY, "");           // The environment must not redirect records to another host.
  curl_easy_setopt(handle, CURLOPT_NOPROXY, "");         // Else it is asked for exceptions, once per request.
  curl_easy_setopt(handle, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
  curl_easy_setopt(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);  // Never waits for a name server when the client ends.
  curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS, milliseconds(options.connectTimeoutSeconds));
  curl_easy_setopt(handle, CURLOPT_OPENSOCKETFUNCTION, &openSocket);
  curl_easy_setopt(handle, CURLOPT_PREREQFUNCTION, &HttpTransfer::onConnected);
  curl_easy_setopt(handle, CURLOPT_PREREQDATA, this);
  curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &HttpTransfer::onHeader);
  curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &HttpTransfer::onBody);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
  curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, &HttpTransfer::onProgress);
  curl_easy_setopt(handle, CURLOPT_XFERINFODATA, this);
  curl_easy_setopt(handle, CURLOPT_NOPROGRESS, 0L);
  trust.apply(handle);
}

void HttpTransfer::load(std::unique_ptr<HttpJob> job, std::shared_ptr<const HttpKnownUrl> url, bool multiplexed) {
  if (progress_.attempts > 0) {
    curl_easy_setopt(handle_.get(), CURLOPT_FRESH_CONNECT, 0L);  // Taken back from beginAttempt().
  }
  job_ = std::move(job);
  body_.clear();
  errorText_.front() = '\0';
  progress_ = {};
  progress_.multiplexed = multiplexed;
  progress_.started = Clock::now();
  progress_.activity = progress_.started;
  setUrl(std::move(url));
  setMethod();
  setHeaders();
}

void HttpTransfer::setUrl(std::shared_ptr<const HttpKnownUrl> url) {
  if (url == url_) {
    return;
  }
  CURL* const handle = handle_.get();
  // Without the text that it knows, libcurl takes it from the parsed URL; where there is none it says what is wrong.
  curl_easy_setopt(handle, CURLOPT_URL, url->handle != nullptr ? nullptr : job_->request.url.c_str());
  curl_easy_setopt(handle, CURLOPT_CURLU, url->handle.get());
  // Waits for the TLS handshake of a connection that may be shared. Plain ones would wait for a whole reply.
  curl_easy_setopt(handle, CURLOPT_PIPEWAIT, job_->origin.secure ? 1L : 0L);
  url_ = std::move(url);
}

void HttpTransfer::setMethod() {
  CURL* const handle = handle_.get();
  const HttpRequest& request = job_->request;
  const bool carries = carriesBody(request);
  if (carries) {
    curl_easy_setopt(handle, CURLOPT_POSTFIELDS, request.body.data());
    curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
  }
  if (method_.first == request.method && method_.second == carries) {
    return;
  }
  method_ = {request.method, carries};
  curl_easy_setopt(handle, CURLOPT_HTTPGET, 1L);  // Also resets what the job before has set.
  curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, nullptr);
  if (request.method == "HEAD") {
    curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
    return;
  }
  if (carries) {
    curl_easy_setopt(handle, CURLOPT_POST, 1L);
  }
  if (request.method != (carries ? "POST" : "GET")) {
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, request.method.c_str());
  }
}

void HttpTransfer::setHeaders() {
  if (headers_.update(job_->request)) {
    curl_easy_setopt(handle_.get(), CURLOPT_HTTPHEADER, headers_.get());
    // The caller's own header is what is sent; this switches the decoding on.
    curl_easy_setopt(handle_.get(), CURLOPT_ACCEPT_ENCODING, acceptsGzip(job_->request) ? "gzip" : nullptr);
  }
}

HttpTransfer::Clock::time_point HttpTransfer::due(Clock::duration idleTimeout) const {
  const Clock::time_point deadline = job_->deadline.value_or(Clock::time_point::max());
  return progress_.connected ? std::min(deadline, progress_.activity + idleTimeout) : deadline;
}

std::unique_ptr<HttpJob> HttpTransfer::unload() {
  return std::move(job_);
}

HttpTransfer& HttpTransfer::of(CURL* handle) {
  HttpTransfer* transfer = nullptr;
  curl_easy_getinfo(handle, CURLINFO_PRIVATE, &transfer);
  return *transfer;
}

HttpReply HttpTransfer::takeReply(CURLcode result) {
  HttpReply reply;
  reply.status = static_cast<int>(responseCode(handle_.get()));
  reply.error = errorOf(result);
  // libcurl tries once more when a kept connection turns out to be dead; the new attempt is what counts then.
  progress_.connected = progress_.connected && !failedToConnect(reply.error);
  if (reply.error == HttpError::None) {
    reply.body = std::exchange(body_, {});
  } else if (progress_.bodyEnd == BodyEnd::TooLarge) {
    reply.errorText = "The reply is longer than " + std::to_string(job_->request.replyLimit) + " bytes";
  } else if (progress_.attempts > kMaxAttempts) {
    reply.errorText = "The server broke off every attempt";
  } else {
    reply.errorText = errorText_.front() != '\0' ? errorText_.c_str() : curl_easy_strerror(result);
  }
  body_ = {};
  return reply;
}

HttpError HttpTransfer::errorOf(CURLcode result) const {
  switch (progress_.bodyEnd) {
    case BodyEnd::Server:
      break;
    case BodyEnd::Cut:
      return HttpError::None;
    case BodyEnd::TooLarge:
      return HttpError::TooLarge;
  }
  if (progress_.attempts > kMaxAttempts) {
    return HttpError::ConnectionLost;
  }
  switch (result) {
    case CURLE_OK:
      return HttpError::None;
    case CURLE_URL_MALFORMAT:
      return HttpError::BadUrl;
    case CURLE_COULDNT_RESOLVE_HOST:
      return HttpError::CannotResolve;
    case CURLE_COULDNT_CONNECT:
      return HttpError::CannotConnect;
    case CURLE_OPERATION_TIMEDOUT:  // Of libcurl's time limits only that for connecting is set.
      return resolved(handle_.get()) ? HttpError::CannotConnect : HttpError::CannotResolve;
    case CURLE_ABORTED_BY_CALLBACK:
      return HttpError::TimedOut;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
      return HttpError::Tls;
    default:
      return HttpError::ConnectionLost;
  }
}

std::optional<bool> HttpTransfer::attempt(const HttpReply& reply) const {
  if (reply.error == HttpError::CannotResolve || reply.error == HttpError::CannotConnect) {
    return false;
  }
  // A refused certificate means that a server has answered.
  return progress_.connected || reply.error == HttpError::Tls ? std::optional(true) : std::nullopt;
}

std::string HttpTransfer::location() const {
  const char* url = nullptr;
  curl_easy_getinfo(handle_.get(), CURLINFO_REDIRECT_URL, &url);
  return url != nullptr ? url : "";
}

bool HttpTransfer::multiplexed() const {
  long version = 0;
  curl_easy_getinfo(handle_.get(), CURLINFO_HTTP_VERSION, &version);
  return version == CURL_HTTP_VERSION_2_0;
}

void HttpTransfer::heard() {
  progress_.heard = Clock::now();
  progress_.activity = progress_.heard;
}

// libcurl repeats a request up to five times as long as it breaks off on connections that were kept. A server that
// reads it and closes would get a record six times: we allow one repetition, on a new connection. Where one connection
// is shared by many requests, each would make its own new one, so there they share the next as well.
int HttpTransfer::beginAttempt() {
  progress_.connected = true;
  progress_.activity = Clock::now();
  if (++progress_.attempts == 1 && !progress_.multiplexed) {
    curl_easy_setopt(handle_.get(), CURLOPT_FRESH_CONNECT, 1L);  // Of the next attempt.
  }
  return progress_.attempts > kMaxAttempts ? CURL_PREREQFUNC_ABORT : CURL_PREREQFUNC_OK;
}

// Returns whether the transfer goes on; its connection ends with it.
bool HttpTransfer::takeBody(const char* data, std::size_t length) {
  const HttpRequest& request = job_->request;
  // Where nobody reads the body, a new connection for the next request costs less than the rest of a long one. That of
  // a redirect is read: libcurl tells its target only at the end.
  const bool mayCut = request.ignoresBody && responseCode(handle_.get()) / 100 != 3;
  const std::size_t limit = mayCut ? std::min(request.replyLimit, kIgnoredBodyBytes) : request.replyLimit;
  const std::size_t room = limit - body_.size();
  if (length <= room) {
    body_.append(data, length);
    return true;
  }
  progress_.bodyEnd = mayCut ? BodyEnd::Cut : BodyEnd::TooLarge;
  if (mayCut) {
    body_.append(data, room);
  } else {
    body_ = {};
  }
  return false;
}

int HttpTransfer::onConnected(void* self, char*, char*, int, int) {
  return static_cast<HttpTransfer*>(self)->beginAttempt();
}

std::size_t HttpTransfer::onHeader(char*, std::size_t size, std::size_t count, void* self) {
  static_cast<HttpTransfer*>(self)->heard();
  return size * count;
}

std::size_t HttpTransfer::onBody(char* data, std::size_t size, std::size_t count, void* self) {
  auto& transfer = *static_cast<HttpTransfer*>(self);
  const std::size_t length = size * count;
  transfer.heard();
  return transfer.takeBody(data, length) ? length : 0;
}

int HttpTransfer::onProgress(void* self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent) {
  Progress& progress = static_cast<HttpTransfer*>(self)->progress_;
  if (std::exchange(progress.moved, received + sent) != received + sent) {
    progress.activity = Clock::now();
  }
  return 0;
}

}  // namespace kesu
