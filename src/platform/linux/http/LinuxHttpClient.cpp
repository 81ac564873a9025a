#include "platform/linux/http/LinuxHttpClient.h"

#include <utility>

#include "platform/linux/http/HttpExit.h"
#include "platform/linux/http/HttpNetwork.h"

namespace kesu {

LinuxHttpClient::LinuxHttpClient(MainLoop& loop, LinuxHttpClientOptions options)
    : network_(std::make_unique<HttpNetwork>(loop, std::move(options))) {}

LinuxHttpClient::~LinuxHttpClient() {
  if (forkGuard_.isForkedChild()) {
    // The thread does not exist here and cannot be joined; its mutexes may have been locked when the process forked.
    static_cast<void>(network_.release());
  }
}

void LinuxHttpClient::send(HttpRequest request, Completion completion) {
  if (!forkGuard_.isForkedChild()) {
    network_->send(std::move(request), std::move(completion), false);
  }
}

void LinuxHttpClient::sendInBackground(HttpRequest request, Completion completion) {
  if (!forkGuard_.isForkedChild()) {
    network_->send(std::move(request), std::move(completion), true);
  }
}

std::size_t LinuxHttpClient::pendingCount() {
  return forkGuard_.isForkedChild() ? 0 : network_->delivery().pendingCount();
}

void LinuxHttpClient::shutdown(double graceSeconds) {
  if (!forkGuard_.isForkedChild()) {
    network_->stop(graceSeconds);
  }
}

void LinuxHttpClient::setConnectObserver(ConnectObserver observer) {
  if (!forkGuard_.isForkedChild()) {
    network_->delivery().setObserver(std::move(observer));
  }
}

void LinuxHttpClient::prepareExit() {
  HttpExit::prepare();
}

}  // namespace kesu
