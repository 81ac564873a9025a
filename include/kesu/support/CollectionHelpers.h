#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>
#include <kesu/platform/MainLoop.h>

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>

namespace kesu {

/// Returns a copy in which every null object is replaced by "", in dictionaries inside it too; nulls inside arrays
/// stay. Any thread; never fails. [NSDictionary dictionaryByReplacingNilValuesWithEmptyString]
KESU_API Dictionary dictionaryByReplacingNilValuesWithEmptyString(const Dictionary& dictionary);

/// Returns the dictionary as compact JSON text; nothing when it contains what JSON cannot carry. Any thread.
/// [NSDictionary serializeDictionaryToString]
KESU_API std::optional<std::string> serializeDictionaryToString(const Dictionary& dictionary);

/// A text that may be missing.
using OptionalText = std::optional<std::string>;

/// Returns the receiver followed by the texts, skipping missing ones. [NSString : :: ::: :::: :::::]
KESU_API std::string concatenated(std::string receiver, std::initializer_list<OptionalText> texts);

/// Returns the receiver followed by the texts up to the first missing one. [NSString concat:]
KESU_API std::string concat(std::string receiver, std::initializer_list<OptionalText> texts);

/// Calls the block synchronously, on the caller's thread. [NSObject block:]
KESU_API void block(const std::function<void()>& block);

/// Calls the block on the main loop `delaySeconds` from now and returns the timer for MainLoop::cancel. Any thread; the
/// block is kept until it has run or was cancelled. [NSObject block:withDelay:]
KESU_API MainLoop::TimerId block(std::function<void()> block, double delaySeconds);

}  // namespace kesu
