#pragma once

#include <string>
#include <string_view>

namespace kesu {

/// Returns the identifier of an installation as developers paste it into the console: Ascii85 between "<~" and "~>", so
/// that it is not mistaken for the identifier itself. Pure.
std::string developerToken(std::string_view identifier);

}  // namespace kesu
