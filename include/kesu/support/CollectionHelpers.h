#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>
#include <kesu/platform/MainLoop.h>

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>

namespace kesu {

/// [NSDictionary dictionaryByReplacingNilValuesWithEmptyString]
/// A copy in which every null object is replaced by "", and every dictionary by the result of this operation on it;
/// other values stay, nulls inside arrays too. Any thread; never fails.
KESU_API Dictionary dictionaryByReplacingNilValuesWithEmptyString(const Dictionary& dictionary);

/// [NSDictionary serializeDictionaryToString]
/// The dictionary as compact JSON text; nothing when it holds what JSON cannot carry. Any thread.
KESU_API std::optional<std::string> serializeDictionaryToString(const Dictionary& dictionary);

/// A text that may be missing.
using OptionalText = std::optional<std::string>;

/// [NSString : :: ::: :::: :::::]
/// The receiver followed by every text that is there; missing ones are skipped.
KESU_API std::string concatenated(std::string receiver, std::initializer_list<OptionalText> texts);

/// [NSString concat:]
/// The receiver followed by the texts up to the first missing one.
KESU_API std::string concat(std::string receiver, std::initializer_list<OptionalText> texts);

/// [NSObject block:]
/// Calls the block at once, on the caller's thread.
KESU_API void block(const std::function<void()>& block);

/// [NSObject block:withDelay:]
/// Calls the block on the main loop `delaySeconds` from now. Any thread; the block is kept until it has run. Returns
/// the timer, which MainLoop::cancel takes.
KESU_API MainLoop::TimerId block(std::function<void()> block, double delaySeconds);

}  // namespace kesu
