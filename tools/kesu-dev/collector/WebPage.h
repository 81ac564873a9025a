#pragma once

#include <string_view>

namespace kesu::dev {

/// Returns the page for `GET /`: web/index.html, embedded at build time.
std::string_view webPage();

}  // namespace kesu::dev
