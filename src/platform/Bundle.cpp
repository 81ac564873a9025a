#include <kesu/platform/Bundle.h>

#include <charconv>

namespace kesu {
namespace {

template <typename Number>
std::string decimalText(Number number) {
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
    return decimalText(*number);
  }
  if (const double* number = value->real()) {
    return decimalText(*number);
  }
  if (const bool* flag = value->boolean()) {
    return std::string(*flag ? "1" : "0");
  }
  return std::nullopt;
}

}  // namespace kesu
