#pragma once

#include <kesu.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace tv {

/// The library's messages as this app uses them: how many are new, and the popup. Main thread.
class Mailbox {
 public:
  /// `pressed` is called with what a button of a message led to, during the lifetime of the mailbox.
  explicit Mailbox(std::function<void(const kesu::KesuInAppStatus&)> pressed);
  ~Mailbox();
  Mailbox(const Mailbox&) = delete;
  Mailbox& operator=(const Mailbox&) = delete;

  /// Asks the service for new messages now and once per minute.
  void start();
  void refresh();
  std::int64_t unread() const { return state_->unread; }

  /// Shows the popup once the messages have arrived; ignored without any.
  void show(kesu::KesuInAppMessageType type = kesu::KesuInAppMessageType::Unread);
  void dismiss();

 private:
  struct State {
    std::int64_t unread = 0;
    std::function<void(const kesu::KesuInAppStatus&)> pressed;
  };

  std::shared_ptr<State> state_;  // Pending replies refer to it weakly.
  kesu::MainLoop::TimerId timer_ = 0;
};

/// Returns the text for the user about a button that was pressed; may be empty.
std::string describe(const kesu::KesuInAppStatus& status);

}  // namespace tv
