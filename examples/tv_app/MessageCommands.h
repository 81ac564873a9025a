#pragma once

#include <functional>
#include <map>
#include <string>

#include "ScriptLine.h"

namespace tv {

/// The commands that ask for messages and tags, by name. Each prints what the library hands over, a line a call, when
/// it comes: "pump" lets it.
std::map<std::string, std::function<void(const ScriptLine&)>> messageCommands();

}  // namespace tv
