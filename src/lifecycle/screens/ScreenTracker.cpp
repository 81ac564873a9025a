#include "lifecycle/screens/ScreenTracker.h"

#include <kesu/ui/Application.h>
#include <kesu/ui/ScreenScope.h>
#include <kesu/ui/Window.h>

#include <cinttypes>
#include <cstdio>

#include "foundation/SharedInstance.h"
#include "records/StateCodes.h"
#include "uikit/Appearance.h"

namespace kesu {
namespace {

std::string suffixOf(std::uint64_t identity) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%" PRIx64, identity);
  return text;
}

ScreenKey keyOf(ViewController& controller) {
  return {controller.className(), suffixOf(reinterpret_cast<std::uintptr_t>(&controller))};
}

ScreenTracker::Provider providerOfStateChanges = nullptr;  // Main thread.

void report(char state, const ScreenKey& screen) {
  if (providerOfStateChanges != nullptr) {
    providerOfStateChanges().screenChanged(state, screen);
  }
}

/// Outlives the tracker, which tests replace.
class Forwarder final : public AppearanceObserver {
 public:
  void didAppear(ViewController& controller) override { sharedScreenTracker().didAppear(controller); }
  void didDisappear(ViewController& controller) override { sharedScreenTracker().didDisappear(controller); }
};

}  // namespace

ScreenTracker& sharedScreenTracker() {
  return SharedInstance<ScreenTracker>::get();
}

void ScreenTracker::trackScreens(Provider provider) {
  static Forwarder forwarder;
  providerOfStateChanges = provider;
  setAppearanceObserver(&forwarder);
}

void ScreenTracker::didAppear(ViewController& controller) {
  report(kStateAppeared, keyOf(controller));
}

void ScreenTracker::didDisappear(ViewController& controller) {
  report(kStateDisappeared, keyOf(controller));
}

void ScreenTracker::screenAppeared(const std::string& name, std::uint64_t id) {
  ownScreens_.push_back({name, suffixOf(id)});
  report(kStateAppeared, ownScreens_.back());
}

void ScreenTracker::screenDisappeared(const std::string& name, std::uint64_t id) {
  const ScreenKey key = {name, suffixOf(id)};
  // From the end: a host may show a screen twice under one identifier, and the latest is the one that left.
  for (std::size_t i = ownScreens_.size(); i-- > 0;) {
    if (ownScreens_[i].prefix == key.prefix && ownScreens_[i].suffix == key.suffix) {
      ownScreens_.erase(ownScreens_.begin() + static_cast<std::ptrdiff_t>(i));
      break;
    }
  }
  report(kStateDisappeared, key);
}

std::optional<ScreenKey> ScreenTracker::topScreen() {
  if (!ownScreens_.empty()) {
    return ownScreens_.back();
  }
  Window* window = Application::shared().keyWindow();
  ViewController* top =
      window != nullptr ? topViewControllerWithRootViewController(window->rootViewController()) : nullptr;
  return top != nullptr ? std::optional(keyOf(*top)) : std::nullopt;
}

void screenAppeared(const std::string& name, std::uint64_t id) {
  sharedScreenTracker().screenAppeared(name, id);
}

void screenDisappeared(const std::string& name, std::uint64_t id) {
  sharedScreenTracker().screenDisappeared(name, id);
}

ScreenScope::ScreenScope(std::string name) : name_(std::move(name)) {
  screenAppeared(name_, reinterpret_cast<std::uintptr_t>(this));
}

ScreenScope::~ScreenScope() {
  screenDisappeared(name_, reinterpret_cast<std::uintptr_t>(this));
}

}  // namespace kesu
