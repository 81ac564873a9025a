#include <kesu/platform/Bundle.h>

#include <charconv>

#include "foundation/NumberText.h"

namespace kesu {
namespace {

// The shortest text that std::to_chars knows: unlike shortestReal(), it writes 100000.0 as "1e+05".
std::string shortestText(double number) {
  char buffer[32];
  return {buffer, std::to_chars(buffer, buffer + sizeof buffer, number).ptr};
}

}  // namespace

std::optional<std::string> Bundle::infoText(std::string_view key) {
  const Value* value = info().find(key);
  if (value == nullptr) {
    return std::nullopt;
  }
  if (const std::string* text = value->text()) {
    return *text;
  }
  if (const std::int64_t* number = value->integer()) {
    return decimal(*number);
  }
  if (const double* number = value->real()) {
    return shortestText(*number);
  }
  if (const bool* flag = value->boolean()) {
    return std::string(*flag ? "1" : "0");
  }
  return std::nullopt;
}

}  // namespace kesu
