#include "lifecycle/screens/ScreenTracker.h"

#include <kesu/ui/Application.h>
#include <kesu/ui/ScreenScope.h>
#include <kesu/ui/Window.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <iterator>
#include <utility>

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
  appeared({keyOf(controller), true});
}

void ScreenTracker::didDisappear(ViewController& controller) {
  disappeared(keyOf(controller));
}

void ScreenTracker::screenAppeared(const std::string& name, std::uint64_t id) {
  appeared({{name, suffixOf(id)}, false});
}

void ScreenTracker::screenDisappeared(const std::string& name, std::uint64_t id) {
  disappeared({name, suffixOf(id)});
}

void ScreenTracker::appeared(Visible screen) {
  visible_.push_back(std::move(screen));
  report(kStateAppeared, visible_.back().key);
}

void ScreenTracker::disappeared(const ScreenKey& key) {
  // From the end: a host may show a screen twice under one identifier, and the latest is the one that left.
  const auto latest = std::find_if(visible_.rbegin(), visible_.rend(), [&key](const Visible& screen) {
    return screen.key.prefix == key.prefix && screen.key.suffix == key.suffix;
  });
  if (latest != visible_.rend()) {
    visible_.erase(std::next(latest).base());
  }
  report(kStateDisappeared, key);
}

std::vector<ScreenKey> ScreenTracker::visibleScreens() const {
  Window* window = Application::shared().keyWindow();
  ViewController* top =
      window != nullptr ? topViewControllerWithRootViewController(window->rootViewController()) : nullptr;
  std::vector<ScreenKey> keys;
  for (const Visible& screen : visible_) {
    if (!screen.isController || top == nullptr) {  // The containers of a window are visible as well.
      keys.push_back(screen.key);
    }
  }
  if (top != nullptr) {
    keys.push_back(keyOf(*top));
  }
  return keys;
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
