#include "platform/linux/http/HttpTransfer.h"

#include <sys/socket.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/linux/http/HttpHeaderLines.h"

namespace kesu {
namespace {

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

void HttpTransfer::load(std::unique_ptr<HttpJob> job) {
  job_ = std::move(job);
  body_.clear();
  errorText_.front() = '\0';
  connected_ = false;
  tooLarge_ = false;
  moved_ = 0;
  lastHeard_ = {};
  lastActivity_ = Clock::now();
  curl_easy_setopt(handle_.get(), CURLOPT_URL, job_->request.url.c_str());
  // Waits for the TLS handshake of a connection that may be shared. Plain ones would wait for a whole reply.
  curl_easy_setopt(handle_.get(), CURLOPT_PIPEWAIT, job_->origin.secure ? 1L : 0L);
  setMethod();
  setHeaders();
}

void HttpTransfer::setMethod() {
  CURL* const handle = handle_.get();
  const HttpRequest& request = job_->request;
  curl_easy_setopt(handle, CURLOPT_HTTPGET, 1L);  // Also resets what the job before has set.
  curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, nullptr);
  if (request.method == "HEAD") {
    curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
    return;
  }
  if (carriesBody(request)) {
    curl_easy_setopt(handle, CURLOPT_POST, 1L);
    curl_easy_setopt(handle, CURLOPT_POSTFIELDS, request.body.data());
    curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
  }
  if (request.method != (carriesBody(request) ? "POST" : "GET")) {
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, request.method.c_str());
  }
}

void HttpTransfer::setHeaders() {
  curl_slist* list = nullptr;
  for (const std::string& line : httpHeaderLines(job_->request)) {
    list = curl_slist_append(list, line.c_str());
  }
  curl_easy_setopt(handle_.get(), CURLOPT_HTTPHEADER, list);
  headers_.reset(list);
  // The caller's own header is what is sent; this switches the decoding on.
  curl_easy_setopt(handle_.get(), CURLOPT_ACCEPT_ENCODING, acceptsGzip(job_->request) ? "gzip" : nullptr);
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
  connected_ = connected_ && !failedToConnect(reply.error);
  if (reply.error == HttpError::None) {
    reply.body = std::exchange(body_, {});
  } else if (tooLarge_) {
    reply.errorText = "The reply is longer than " + std::to_string(job_->request.replyLimit) + " bytes";
  } else {
    reply.errorText = errorText_.front() != '\0' ? errorText_.c_str() : curl_easy_strerror(result);
  }
  body_ = {};
  return reply;
}

HttpError HttpTransfer::errorOf(CURLcode result) const {
  if (tooLarge_) {
    return HttpError::TooLarge;
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

std::optional<HttpAttempt> HttpTransfer::attempt(const HttpReply& reply) const {
  HttpAttempt made{job_->origin.host, job_->origin.port, false};
  if (reply.error == HttpError::CannotResolve || reply.error == HttpError::CannotConnect) {
    return made;
  }
  // A refused certificate means that a server has answered.
  made.connected = connected_ || reply.error == HttpError::Tls;
  return made.connected ? std::optional(made) : std::nullopt;
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
  lastHeard_ = Clock::now();
  lastActivity_ = lastHeard_;
}

int HttpTransfer::onConnected(void* self, char*, char*, int, int) {
  auto& transfer = *static_cast<HttpTransfer*>(self);
  transfer.connected_ = true;
  transfer.lastActivity_ = Clock::now();
  return CURL_PREREQFUNC_OK;
}

std::size_t HttpTransfer::onHeader(char*, std::size_t size, std::size_t count, void* self) {
  static_cast<HttpTransfer*>(self)->heard();
  return size * count;
}

std::size_t HttpTransfer::onBody(char* data, std::size_t size, std::size_t count, void* self) {
  auto& transfer = *static_cast<HttpTransfer*>(self);
  const std::size_t length = size * count;
  transfer.heard();
  if (length > transfer.job_->request.replyLimit - transfer.body_.size()) {
    transfer.tooLarge_ = true;
    transfer.body_ = {};
    return 0;  // Ends the transfer and its connection.
  }
  transfer.body_.append(data, length);
  return length;
}

int HttpTransfer::onProgress(void* self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent) {
  auto& transfer = *static_cast<HttpTransfer*>(self);
  if (std::exchange(transfer.moved_, received + sent) != received + sent) {
    transfer.lastActivity_ = Clock::now();
  }
  return 0;
}

}  // namespace kesu
