#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/message_ui/KesuInAppMessageDelegate.h>
#include <kesu/messaging/KesuInAppStatus.h>
#include <kesu/platform/Platform.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "delivery/KesuPost.h"
#include "device/KesuMetrics.h"

namespace kesu {

/// The outcome of a button's action; hosts and the collector see the number.
enum class DeepLinkStatus : std::int64_t {
  NoAction = 1,    ///< The button has none.
  Opened = 2,      ///< A URL, which the system opened.
  Refused = 3,     ///< A URL, which the system (or the host's veto) refused. After an arrow: another message is shown.
  Identifier = 4,  ///< An identifier for the host; nothing is opened.
  WebHook = 5      ///< A web hook, which was called.
};

/// What a button's action text asks for.
struct ButtonAction {
  enum class Kind {
    None,        ///< Nothing.
    Identifier,  ///< To hand `text` to the host.
    WebHook,     ///< To call `text`.
    Open         ///< To have the system open `text`.
  };
  Kind kind = Kind::None;
  std::string text;

  friend bool operator==(const ButtonAction&, const ButtonAction&) = default;
};

/// Decides by the text of an action alone. Any thread.
/// Kept: a web hook loses its last 8 characters, wherever its marker stands.
ButtonAction decideAction(std::string_view action);

/// One pressed button: all that is needed later, when message and popup may be closed.
struct ButtonPress {
  std::int64_t tag = 0;  ///< The button's index.
  std::string title;
  std::string action;
  Object messageID;          ///< "mid" of the message, as its header has it.
  Object campaignID;         ///< "cid".
  bool hasMessages = false;  ///< Whether there are headers: without, no event is posted.
  std::function<void(const KesuInAppStatus&)> completionBlock;
  std::function<KesuInAppMessageDelegate*()> delegate;  ///< Called when the action was performed; may return null.
  std::function<bool(const std::string& url)> shouldOpenUrl;  ///< The host's veto; empty for none.
};

/// Performs the actions of pressed buttons, and reports them to host and collector. Main thread. The services must
/// outlive it.
class CallToAction {
 public:
  CallToAction(Platform& platform, KesuPost& post, KesuMetrics& metrics)
      : platform_(platform), post_(post), metrics_(metrics) {}

  /// Performs on the main loop's next turn: the action; the host's block, else its delegate, and the exported
  /// notification; the record "cta"; the event "Kesu.InAppCallToAction". A web hook that fails calls the block once
  /// more. During an exit handler no function of the host is called and no URL opened; only the collector is informed.
  void perform(ButtonPress press);

 private:
  void run(const ButtonPress& press);
  void act(const ButtonPress& press, const ButtonAction& action, DeepLinkStatus& status);

  Platform& platform_;
  KesuPost& post_;
  KesuMetrics& metrics_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  // Presses that are queued watch it.
};

/// Returns the body of a web hook. `uniqueId` is a fresh identifier (newBase64Uuid). Any thread.
Dictionary webHookBody(Platform& platform, KesuMetrics& metrics, const std::string& uniqueId);

}  // namespace kesu
