#include "platform/linux/outbox/OutboxWarnings.h"

#include <string>
#include <system_error>

#include "platform/ServiceLog.h"

namespace kesu {
namespace {

const char* outboxText(OutboxWarnings::Kind kind) {
  switch (kind) {
    case OutboxWarnings::Kind::Room:
      return "Records are not kept on disk until they are delivered: ";
    case OutboxWarnings::Kind::Mark:
      return "Delivered records may be sent again: ";
    case OutboxWarnings::Kind::Flush:
      return "Records may not survive a loss of power: ";
    case OutboxWarnings::Kind::Read:
      return "Records of an earlier process cannot be read: ";
  }
  return "";
}

}  // namespace

void OutboxWarnings::failed(Kind kind, int error) {
  if (error != 0 && !isTold(kind).exchange(true, std::memory_order_relaxed)) {
    const std::string reason =
        error == kTooManySegments ? "too many are waiting." : std::generic_category().message(error);
    serviceLog(0, outboxText(kind) + reason);
  }
}

}  // namespace kesu
