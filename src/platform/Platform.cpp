#include <kesu/platform/Platform.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace kesu {
namespace {

std::atomic<Platform*> installedPlatform{nullptr};
std::atomic<void (*)()> defaultInstaller{nullptr};

}  // namespace

Platform& Platform::current() {
  Platform* platform = installedPlatform.load(std::memory_order_acquire);
  if (platform == nullptr) {
    if (auto* installer = defaultInstaller.load(std::memory_order_acquire)) {
      installer();
    }
    platform = installedPlatform.load(std::memory_order_acquire);
  }
  if (platform == nullptr) {
    std::fputs("KESU no platform is installed\n", stderr);
    std::abort();
  }
  return *platform;
}

void Platform::install(Platform* platform) {
  installedPlatform.store(platform, std::memory_order_release);
}

bool Platform::isInstalled() {
  return installedPlatform.load(std::memory_order_acquire) != nullptr;
}

void Platform::setDefaultInstaller(void (*installer)()) {
  defaultInstaller.store(installer, std::memory_order_release);
}

}  // namespace kesu
