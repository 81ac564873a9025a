#include "message_ui/MessagePaging.h"

#include <algorithm>
#include <string>

#include "message_ui/MessageBars.h"

namespace kesu {
namespace {

bool isRead(const Value& header) {
  const Dictionary* dictionary = header.dictionary();
  const Value* flag = dictionary != nullptr ? dictionary->find("contentRead") : nullptr;
  const std::string* text = flag != nullptr ? flag->text() : nullptr;
  return flag != nullptr && (flag->realValue() != 0.0 || (text != nullptr && (*text == "YES" || *text == "true")));
}

}  // namespace

std::int64_t firstMessageIndex(const Array& headers) {
  std::int64_t read = 0;
  std::int64_t index = -1;
  for (const Value& header : headers) {
    if (isRead(header)) {
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
