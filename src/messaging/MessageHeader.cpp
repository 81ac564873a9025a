#include "messaging/MessageHeader.h"

#include <string>

namespace kesu {

bool isContentRead(const Value& header) {
  const Dictionary* dictionary = header.dictionary();
  const Value* flag = dictionary != nullptr ? dictionary->find(kContentRead) : nullptr;
  const std::string* text = flag != nullptr ? flag->text() : nullptr;
  return flag != nullptr && (flag->realValue() != 0.0 || (text != nullptr && (*text == "YES" || *text == "true")));
}

}  // namespace kesu
