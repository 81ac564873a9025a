#include "message_ui/MessagePaging.h"

#include <algorithm>

#include "messaging/MessageHeader.h"

namespace kesu {

std::int64_t firstMessageIndex(const Array& headers) {
  std::int64_t read = 0;
  std::int64_t index = -1;
  for (const Value& header : headers) {
    if (isContentRead(header)) {
      ++read;
    } else {
      index = read;
    }
  }
  return std::max<std::int64_t>(index, 0);
}

std::int64_t pagedIndex(std::int64_t tag, std::int64_t index, std::size_t count) {
  if (tag == kNextTag) {
    return index < static_cast<std::int64_t>(count) - 1 ? index + 1 : index;
  }
  return index >= 1 ? index - 1 : index;
}

}  // namespace kesu
