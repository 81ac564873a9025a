#include "platform/linux/http/HttpDelivery.h"

#include <utility>

namespace kesu {

HttpDelivery::HttpDelivery(MainLoop& loop) : loop_(loop) {}

void HttpDelivery::deliver(HttpClient::Completion completion, HttpReply reply, std::optional<HttpAttempt> attempt) {
  loop_.post([state = state_, completion = std::move(completion), reply = std::move(reply),
              attempt = std::move(attempt)]() mutable {
    --state->pending;
    if (attempt && state->observer) {
      const HttpClient::ConnectObserver observer = state->observer;  // It may replace itself.
      observer(attempt->host, attempt->port, attempt->connected);
    }
    if (completion) {
      completion(std::move(reply));
    }
  });
}

}  // namespace kesu
