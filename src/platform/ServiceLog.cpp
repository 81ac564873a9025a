#include "platform/ServiceLog.h"

#include <atomic>

namespace kesu {
namespace {

std::atomic<void (*)(int, const std::string&)> handlerOfLines{nullptr};

}  // namespace

void serviceLog(int level, const std::string& text) {
  if (auto* handler = handlerOfLines.load(std::memory_order_acquire)) {
    handler(level, text);
  }
}

void setServiceLogHandler(void (*handler)(int level, const std::string& text)) {
  handlerOfLines.store(handler, std::memory_order_release);
}

}  // namespace kesu
