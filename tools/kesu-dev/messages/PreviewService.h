#pragma once

#include <kesu/platform/HttpClient.h>

#include <atomic>
#include <string>
#include <utility>

#include "tools/kesu-dev/messages/MessageDirectory.h"

namespace kesu::dev {

/// The network of a preview: a messaging service with one message, and a collector that accepts everything. Any thread;
/// the directory must outlive it.
class PreviewService final : public HttpClient {
 public:
  static constexpr const char* kOrigin = "https://preview.invalid";

  PreviewService(const MessageDirectory& directory, Message message)
      : directory_(directory), message_(std::move(message)) {}

  void send(HttpRequest request, Completion completion) override;
  void sendInBackground(HttpRequest request, Completion completion) override {
    send(std::move(request), std::move(completion));  // Nothing here is completed off the main loop.
  }
  std::size_t pendingCount() override { return pending_; }
  void shutdown(double /*graceSeconds*/) override { isDown_ = true; }
  void setConnectObserver(ConnectObserver /*observer*/) override {}

 private:
  HttpReply answer(const std::string& url) const;

  const MessageDirectory& directory_;
  const Message message_;
  std::atomic<std::size_t> pending_{0};
  std::atomic<bool> isDown_{false};
};

}  // namespace kesu::dev
