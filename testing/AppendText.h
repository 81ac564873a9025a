#pragma once

#include <kesu/platform/UserDefaults.h>

#include <string_view>

namespace kesu::testing {

/// Appends to the text under `key` as the only change of a step.
inline void appendText(UserDefaults& defaults, std::string_view key, std::string_view suffix) {
  const DefaultsChange change = DefaultsChange::append(key, suffix);
  defaults.apply({&change, 1});
}

}  // namespace kesu::testing
