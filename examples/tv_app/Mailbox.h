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
  /// `pressed` is told what a button of a message led to; not any more once the mailbox is gone.
  explicit Mailbox(std::function<void(const kesu::KesuInAppStatus&)> pressed);
  ~Mailbox();
  Mailbox(const Mailbox&) = delete;
  Mailbox& operator=(const Mailbox&) = delete;

  /// Asks the service now and from now on once a minute.
  void start();
  void refresh();
  std::int64_t unread() const { return state_->unread; }

  /// Shows the popup once the messages are here; nothing happens when there are none.
  void show(kesu::KesuInAppMessageType type = kesu::KesuInAppMessageType::Unread);
  void dismiss();

 private:
  struct State {
    std::int64_t unread = 0;
    std::function<void(const kesu::KesuInAppStatus&)> pressed;
  };

  std::shared_ptr<State> state_;  // Replies on their way hold it weakly.
  kesu::MainLoop::TimerId timer_ = 0;
};

/// What to tell the user about a button that was pressed; empty for nothing.
std::string describe(const kesu::KesuInAppStatus& status);

}  // namespace tv
