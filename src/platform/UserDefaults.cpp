#include <kesu/platform/UserDefaults.h>

namespace kesu {

std::string UserDefaults::text(std::string_view key) {
  const std::optional<Value> value = get(key);
  const std::string* found = value ? value->text() : nullptr;
  return found != nullptr ? *found : std::string();
}

std::int64_t UserDefaults::integer(std::string_view key) {
  const std::optional<Value> value = get(key);
  return value ? value->integerValue() : 0;
}

double UserDefaults::real(std::string_view key) {
  const std::optional<Value> value = get(key);
  return value ? value->realValue() : 0.0;
}

bool UserDefaults::boolean(std::string_view key) {
  const std::optional<Value> value = get(key);
  if (!value) {
    return false;
  }
  if (const bool* flag = value->boolean()) {
    return *flag;
  }
  if (const std::string* word = value->text()) {
    return *word == "1" || *word == "true" || *word == "YES";
  }
  if (const double* number = value->real()) {
    return *number != 0.0;
  }
  const std::int64_t* number = value->integer();
  return number != nullptr && *number != 0;
}

}  // namespace kesu
