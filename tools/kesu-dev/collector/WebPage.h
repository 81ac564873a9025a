#pragma once

#include <string_view>

namespace kesu::dev {

/// The page that `GET /` answers: web/index.html, which is put into the program when it is built.
std::string_view webPage();

}  // namespace kesu::dev
