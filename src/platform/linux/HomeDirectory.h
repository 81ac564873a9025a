#pragma once

#include <kesu/platform/Bundle.h>

#include <string>

namespace kesu {

/// Finds the directory of the library's files, absolute; "" when there is none. The first of: `wanted` by the host,
/// $KESU_HOME, $XDG_DATA_HOME/<application>, $HOME/.local/share/<application>. The application is the bundle's
/// "CFBundleIdentifier"; where that is missing or no plain name (a path must not lead elsewhere), the executable's
/// name. Reads Info.plist only when the application's name is needed. Creates nothing.
std::string homeDirectory(const std::string& wanted, Bundle& bundle);

}  // namespace kesu
