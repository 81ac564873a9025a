#include "Mailbox.h"

#include <utility>

namespace tv {
namespace {

constexpr double kPollSeconds = 60.0;

}  // namespace

Mailbox::Mailbox(std::function<void(const kesu::KesuInAppStatus&)> pressed)
    : state_(std::make_shared<State>(State{0, std::move(pressed)})) {}

Mailbox::~Mailbox() {
  kesu::MainLoop::shared().cancel(timer_);
}

void Mailbox::start() {
  refresh();
  timer_ = kesu::MainLoop::shared().schedule(kPollSeconds, true, [this] { refresh(); });
}

void Mailbox::refresh() {
  kesu::Kesu::countNewUnFetched([weak = std::weak_ptr(state_)](std::int64_t count) {
    if (const auto state = weak.lock()) {
      state->unread = count;
    }
  });
}

void Mailbox::show(kesu::KesuInAppMessageType type) {
  const auto pressed = [weak = std::weak_ptr(state_)](const kesu::KesuInAppStatus& status) {
    if (const auto state = weak.lock()) {
      state->pressed(status);
    }
  };
  if (type == kesu::KesuInAppMessageType::Unread) {
    kesu::Kesu::showUnreadInAppNotificationUIWithCompletionHandler(pressed);
  } else {
    kesu::Kesu::showInAppNotificationUIForDisplayMessages(type, kesu::Color::white(), pressed);
  }
}

void Mailbox::dismiss() {
  kesu::Kesu::dismissInAppNotificationUI(true);
}

std::string describe(const kesu::KesuInAppStatus& status) {
  switch (status.status) {
    case 2:
      return "Opened " + status.urlString.value_or("a link");
    case 3:
      return status.urlString ? "Cannot open " + *status.urlString : "";
    case 4:
      return "This is yours: " + status.urlString.value_or("");
    case 5:
      return status.error ? "That did not work" : "Done";
    default:
      return "";
  }
}

}  // namespace tv
