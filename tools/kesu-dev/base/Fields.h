#pragma once

#include <kesu/foundation/Value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kesu::dev {

// JSON from outside: reading never fails, a field that is missing or of another kind counts as empty. Pure.

/// Reads a JSON text that must be an object; `problem` then is empty, else "is not valid JSON" or "is JSON but not an
/// object".
std::optional<Dictionary> parseObject(std::string_view json, std::string& problem);
std::optional<Dictionary> parseObject(std::string_view json);

/// The text, the number and the list under a key.
std::string textIn(const Dictionary& from, std::string_view key);
std::int64_t numberIn(const Dictionary& from, std::string_view key);
const Array& listIn(const Dictionary& from, std::string_view key);

/// The objects and the texts of a list; what is no object or text counts as an empty one.
std::vector<Dictionary> objectsOf(const Array& list);
std::vector<std::string> textsOf(const Array& list);

/// Texts as a list that can be written as JSON: bytes that are no valid UTF-8 are replaced.
Array listOf(const std::vector<std::string>& texts);

/// JSON text of a dictionary. Its texts must have gone through validUtf8 before; what cannot be written gives "{}".
std::string jsonText(const Dictionary& dictionary);

}  // namespace kesu::dev
