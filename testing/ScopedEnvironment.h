#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace kesu::testing {

/// Sets environment variables for a test and restores them at the end. Only while no other thread reads the
/// environment.
class ScopedEnvironment {
 public:
  ScopedEnvironment() = default;

  ~ScopedEnvironment() {
    for (const auto& [name, value] : before_) {
      put(name, value);
    }
  }

  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

  /// Sets a variable, or removes it.
  void set(const std::string& name, const std::optional<std::string>& value) {
    const char* before = std::getenv(name.c_str());
    before_.emplace(name, before != nullptr ? std::optional<std::string>(before) : std::nullopt);
    put(name, value);
  }

 private:
  static void put(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
      ::setenv(name.c_str(), value->c_str(), 1);
    } else {
      ::unsetenv(name.c_str());
    }
  }

  std::map<std::string, std::optional<std::string>> before_;
};

}  // namespace kesu::testing
