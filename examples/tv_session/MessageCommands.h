#pragma once

#include <kesu/messaging/KesuInAppMessageType.h>

#include <functional>
#include <map>
#include <string>

#include "ScriptLine.h"

namespace tv {

/// The type of messages that the first word of a line names: unread, read or all, or its number; unread without a word.
/// Throws std::runtime_error for other words. Numbers that are no type are passed on: the library takes any.
kesu::KesuInAppMessageType messageType(const ScriptLine& line);

/// The commands that request messages and tags, by name. Each prints what its handler receives, a line per call, during
/// a later "pump".
std::map<std::string, std::function<void(const ScriptLine&)>> messageCommands();

}  // namespace tv
