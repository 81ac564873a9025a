#pragma once

#include <kesu/ui/Window.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "drawing/Pictures.h"
#include "foundation/Base64.h"
#include "foundation/Json.h"
#include "message_ui/KesuInAppPresenter.h"
#include "messaging/KesuImageCache.h"
#include "messaging/MessagingWiring.h"
#include "records/DefaultsKeys.h"
#include "testing/DeliverAsTaken.h"
#include "testing/ScopedPlatform.h"
#include "uikit/Animator.h"
#include "uikit/WindowInput.h"

namespace kesu::testing {

inline std::string jsonText(const Dictionary& dictionary) {
  std::string text;
  writeJson(dictionary, text);
  return text;
}

/// The service's list of headers for these message identifiers; the campaign of message "m" is "c-m".
inline std::string headersReply(const std::vector<std::string>& identifiers) {
  Array list;
  for (const std::string& identifier : identifiers) {
    list.push_back(Dictionary{{"mid", identifier}, {"cid", "c-" + identifier}});
  }
  return jsonText({{"metadatalist", std::move(list)}});
}

/// The service's reply to a request for one message.
inline std::string bodyReply(const std::string& title, const std::string& message, const Dictionary& templateData = {},
                             const std::string& templateId = "p_temp_2") {
  return jsonText({{"payload", Dictionary{{"title", title},
                                          {"msg", message},
                                          {"templateId", templateId},
                                          {"templateData", jsonText(templateData)}}}});
}

/// The "buttons" of template data: title and action each.
inline Array buttonEntries(const std::vector<std::pair<std::string, std::string>>& buttons) {
  Array entries;
  for (const auto& [title, action] : buttons) {
    entries.push_back(Value(Array{Value(title), Value(action)}));
  }
  return entries;
}

/// A picture within a "data:" URL.
inline std::string pictureUrl(const Image& image) {
  const std::string png = encodePng(image).value_or("");
  return "data:image/png;base64," + base64Encode({reinterpret_cast<const std::uint8_t*>(png.data()), png.size()});
}

/// A picture of this size and one colour within a "data:" URL.
inline std::string pictureUrl(int width, int height) {
  return pictureUrl({width, height, std::vector<std::uint32_t>(static_cast<std::size_t>(width * height), 0xFF336699U)});
}

/// Answers the oldest open request for a path and lets the consequences happen; returns false if there is none.
inline bool answerOldest(ScopedPlatform& platform, const std::string& path, const std::string& reply,
                         int status = 200) {
  const auto requests = platform.http.requests();
  for (std::size_t i = 0; i < requests.size(); ++i) {
    if (requests[i].url.find(path) != std::string::npos && platform.http.answer(i, status, reply)) {
      platform.settle();
      return true;
    }
  }
  return false;
}

/// A presenter on a platform of doubles, wired as in the library, and a window that is key. The presenter may be
/// destroyed before the rest.
struct MessageScreen : MessagingWiring {
  explicit MessageScreen(Platform& on) : MessagingWiring(on) {
    current_ = this;
    deliverAsTaken(outbox, post);
    platform.defaults.set(kAppKeyDefault, "key");
    platform.defaults.set(kInstanceIdDefault, "kaid");
    platform.defaults.set(kInstanceId2Default, "kaid2");
    window.makeKeyAndVisible();
  }
  ~MessageScreen() { Animator::shared().finishAll(); }

  MessageScreen(const MessageScreen&) = delete;
  MessageScreen& operator=(const MessageScreen&) = delete;

  /// A press of a button of the remote, down and up.
  void press(RemoteButton button) {
    WindowInput::of(window).press(button, PressPhase::Began);
    WindowInput::of(window).press(button, PressPhase::Ended);
  }

  Window window;
  KesuImageCache cache{platform.files, platform.imageWorker, platform.notifications};
  std::optional<KesuInAppPresenter> presenter{
      std::in_place, KesuInAppPresenter::Services{platform, inbox, imageLoader,
                                                  []() -> KesuImageCache& { return current_->cache; }, post, metrics}};

 private:
  static inline MessageScreen* current_ = nullptr;
};

}  // namespace kesu::testing
