#include "support/KesuPriorityLogger.h"

#include <kesu/platform/Platform.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

namespace kesu {
namespace {

[[gnu::format(printf, 1, 0)]] std::string formatted(const char* format, std::va_list arguments) {
  // Nearly every line fits; a longer one is formatted twice rather than cut.
  std::array<char, 512> shortText;
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(shortText.data(), shortText.size(), format, arguments);
  std::string text;
  if (length >= 0 && static_cast<std::size_t>(length) < shortText.size()) {
    text.assign(shortText.data(), static_cast<std::size_t>(length));
  } else if (length > 0) {
    text.resize(static_cast<std::size_t>(length) + 1);
    std::vsnprintf(text.data(), text.size(), format, again);
    text.pop_back();
  }
  va_end(again);
  return text;
}

}  // namespace

void KesuPriorityLogger::logWithLevel(std::int32_t level, const char* format, ...) {
  if (!shows(level)) {
    return;
  }
  std::va_list arguments;
  va_start(arguments, format);
  const std::string text = formatted(format, arguments);
  va_end(arguments);
  Platform::current().log.write(level, text);
}

void KesuPriorityLogger::logWithLevel(std::int32_t level, const char* filePath, unsigned long lineNo,
                                      const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const std::string text = formatted(format, arguments);
  va_end(arguments);
  const char* slash = std::strrchr(filePath, '/');
  logWithLevel(level, "[%s:%lu]%s", slash != nullptr ? slash + 1 : filePath, lineNo, text.c_str());
}

}  // namespace kesu
