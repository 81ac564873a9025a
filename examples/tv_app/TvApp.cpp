#include "TvApp.h"

#include <kesu.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "DetailScreen.h"
#include "SettingsScreen.h"
#include "ShelfScreen.h"

namespace tv {
namespace {

constexpr Uint64 kFrameMilliseconds = 16;
constexpr Uint64 kToastMilliseconds = 3500;
constexpr float kLongestStepSeconds = 0.1F;     // After a pause everything continues from where it was.
constexpr std::int64_t kIdentifierForHost = 4;  // KesuInAppStatus::status.
constexpr std::int64_t kFirstArrow = 10;        // KesuInAppStatus::buttonIndex of the arrows that page.
constexpr std::string_view kLinkScheme = "example-tv://";

}  // namespace

TvApp::TvApp(SDL_Renderer& renderer, const std::string& stateFile)
    : renderer_(renderer),
      painter_(renderer),
      overlay_(&renderer),
      mailbox_([this](const auto& status) { messageAnswered(status); }) {
  if (!stateFile.empty()) {
    state_.open(stateFile);
  }
  // Work for the main loop ends SDL_WaitEvent.
  const Uint32 wakeEvent = SDL_RegisterEvents(1);
  kesu::MainLoop::shared().setWakeCallback([wakeEvent] {
    SDL_Event event{};
    event.type = wakeEvent;
    SDL_PushEvent(&event);
  });
  push(std::make_unique<ShelfScreen>(*this));
  mailbox_.start();
}

TvApp::~TvApp() {
  leaveScreen();
  kesu::MainLoop::shared().setWakeCallback({});
}

void TvApp::run() {
  while (isRunning_) {
    waitForWork();
    step();
  }
}

void TvApp::step() {
  SDL_Event event;
  while (SDL_PollEvent(&event) != 0) {
    isStale_ = true;
    if (overlay_.handle(event)) {
      continue;  // Consumed by the popup.
    }
    handle(event);
  }
  isStale_ = kesu::MainLoop::shared().pump() > 0 || isStale_;
  if (isVisible_ && (isStale_ || isMoving_ || overlay_.needsFrame())) {
    drawFrame();
  }
  noticeChanges();
}

// Sleeps until there is an event, work for the library's main loop, or time for the next frame of an animation.
void TvApp::waitForWork() {
  const Uint64 sinceFrame = SDL_GetTicks64() - lastFrame_;
  std::optional<double> milliseconds;
  if (const auto due = kesu::MainLoop::shared().nextDue()) {
    milliseconds = *due * 1000.0 + 1.0;
  }
  if (isVisible_ && (isStale_ || isMoving_ || overlay_.needsFrame())) {
    milliseconds = std::min<double>(milliseconds.value_or(1000.0),
                                    static_cast<double>(kFrameMilliseconds - std::min(kFrameMilliseconds, sinceFrame)));
  }
  if (!milliseconds) {
    SDL_WaitEvent(nullptr);
  } else if (*milliseconds >= 1.0) {
    SDL_WaitEventTimeout(nullptr, static_cast<int>(std::min(*milliseconds, 60000.0)));
  }
}

void TvApp::handle(const SDL_Event& event) {
  std::optional<kesu::RemoteButton> button;
  switch (event.type) {
    case SDL_QUIT:
      isRunning_ = false;
      break;
    case SDL_WINDOWEVENT:
      handleWindow(event.window.event);
      break;
    case SDL_RENDER_TARGETS_RESET:
    case SDL_RENDER_DEVICE_RESET:
      painter_.forget();
      break;
    case SDL_CONTROLLERDEVICEADDED:
      SDL_GameControllerOpen(event.cdevice.which);
      break;
    case SDL_KEYDOWN:
      button = kesu::host::remoteButtonOf(event.key.keysym.sym);
      if (button && event.key.repeat != 0 && *button > kesu::RemoteButton::Right) {
        button.reset();  // Only arrows repeat.
      }
      break;
    case SDL_CONTROLLERBUTTONDOWN:
      button = kesu::host::remoteButtonOf(static_cast<SDL_GameControllerButton>(event.cbutton.button));
      break;
    default:
      break;
  }
  if (button) {
    screen().press(*button);
  }
}

void TvApp::handleWindow(Uint8 change) {
  switch (change) {
    case SDL_WINDOWEVENT_MINIMIZED:
    case SDL_WINDOWEVENT_HIDDEN:
      setVisible(false);
      break;
    case SDL_WINDOWEVENT_RESTORED:
    case SDL_WINDOWEVENT_SHOWN:
      setVisible(true);
      break;
    default:
      break;
  }
}

// A window without the keyboard may still be seen: only one that is minimised or hidden is in the background.
void TvApp::setVisible(bool isVisible) {
  if (std::exchange(isVisible_, isVisible) == isVisible) {
    return;
  }
  if (isVisible) {
    kesu::Application::shared().willEnterForeground();
    mailbox_.refresh();
  } else {
    kesu::Application::shared().didEnterBackground();
  }
}

void TvApp::drawFrame() {
  const Uint64 now = SDL_GetTicks64();
  const float seconds =
      std::min(static_cast<float>(now - std::exchange(lastFrame_, now)) / 1000.0F, kLongestStepSeconds);
  isMoving_ = screen().advance(seconds) || now < toastUntil_;
  isStale_ = false;
  painter_.begin();
  screen().draw(painter_);
  drawToast();
  overlay_.draw(&renderer_);
  SDL_RenderPresent(&renderer_);
}

void TvApp::drawToast() {
  const Uint64 now = SDL_GetTicks64();
  if (now >= toastUntil_) {
    return;
  }
  const TextStyle style{Weight::Medium, 28.0F, palette::kBack};
  const float width = painter_.textWidth(toast_, style) + 80.0F;
  const SDL_FRect rect{(kScreenWidth - width) / 2.0F, 950.0F, width, 72.0F};
  painter_.shadow(rect, 36.0F, 30.0F, 0.7F);
  painter_.roundRect(rect, 36.0F, palette::kBright);
  painter_.centeredText(toast_, kScreenWidth / 2.0F, 968.0F, style);
}

void TvApp::say(const std::string& text) {
  toast_ = text;
  toastUntil_ = text.empty() ? 0 : SDL_GetTicks64() + kToastMilliseconds;
  isStale_ = true;
}

// The popup stays until it is closed: this app does so when one of the message's buttons was pressed, whatever it led
// to. Such a button may send an identifier to the host: "list/ID" puts a show on the list.
void TvApp::messageAnswered(const kesu::KesuInAppStatus& status) {
  if (status.buttonIndex >= kFirstArrow) {
    return;
  }
  mailbox_.dismiss();
  const std::string word = status.status == kIdentifierForHost ? status.urlString.value_or("") : "";
  const Show* show = word.starts_with("list/") ? findShow(word.substr(5)) : nullptr;
  if (show != nullptr) {
    myList_.insert(show->id);
    say(show->title + " is on your list");
  } else {
    say(describe(status));
  }
}

// Without unread messages, shows those that were read before.
void TvApp::showMessages() {
  using enum kesu::KesuInAppMessageType;
  mailbox_.show(mailbox_.unread() > 0 ? Unread : All);
}

void TvApp::push(std::unique_ptr<Screen> screen) {
  leaveScreen();
  screens_.push_back(std::move(screen));
  enterScreen();
}

void TvApp::goBack() {
  if (screens_.size() == 1) {
    isRunning_ = false;
    return;
  }
  leaveScreen();
  screens_.pop_back();
  enterScreen();
}

// The library learns which screen the user sees, and for how long.
void TvApp::enterScreen() {
  tracked_.emplace(screen().name());
  isStale_ = true;
}

void TvApp::leaveScreen() {
  if (tracked_) {
    screen().disappeared();
    tracked_.reset();
  }
}

void TvApp::showDetail(const Show& show) {
  push(std::make_unique<DetailScreen>(*this, show, myList_));
}

void TvApp::showSettings() {
  push(std::make_unique<SettingsScreen>(*this, [this](kesu::KesuInAppMessageType type) { mailbox_.show(type); }));
}

bool TvApp::openLink(const std::string& url) {
  if (!url.starts_with(kLinkScheme)) {
    return false;
  }
  const std::string path = url.substr(kLinkScheme.size());
  const std::string id = path.substr(std::min(path.size(), path.find('/') + 1));
  const Show* show = path.starts_with("show/") || path.starts_with("trailer/") ? findShow(id) : nullptr;
  if (show != nullptr) {
    showDetail(*show);
  } else if (path == "settings") {
    showSettings();
  }
  return show != nullptr || path == "settings";
}

std::string TvApp::focus() const {
  if (!overlay_.overlay().isModal()) {
    return screen().name() + ": " + screen().focus();
  }
  std::string title;
  std::string focused = "nothing";
  for (const kesu::AccessibilityNode& node : overlay_.overlay().accessibilityTree()) {
    if (title.empty()) {
      title = node.label;  // The title is read first.
    }
    if (node.isFocused) {
      focused = node.label;
    }
  }
  return title.empty() ? "Popup" : "Popup \"" + title + "\": " + focused;
}

void TvApp::noticeChanges() {
  const bool isUp = overlay_.overlay().isModal();
  if (std::exchange(isPopupUp_, isUp) && !isUp) {
    mailbox_.refresh();
  }
  if (state_.is_open()) {
    const std::string now = focus();
    if (std::exchange(lastState_, now) != now) {
      state_ << now << std::endl;
    }
  }
}

}  // namespace tv
