#pragma once

#include <kesu/foundation/Value.h>

#include <optional>
#include <string>
#include <vector>

namespace tv {

/// One line of a script: a command, its words and its key=value pairs. "#" begins a comment; double quotes hold words
/// with blanks together: event "Movie started" title="Night Train".
struct ScriptLine {
  std::string command;  ///< Empty for a blank line or a comment.
  std::vector<std::string> words;
  kesu::Attributes attributes;

  /// The i-th word, or `fallback` when there are fewer.
  std::string word(std::size_t i, const std::string& fallback = "") const;

  /// The i-th word as a number, with or without "+"; nothing when it is missing or not a number.
  std::optional<double> number(std::size_t i) const;
};

/// Parses a line. Never fails: an open quote ends with the line.
ScriptLine parseScriptLine(const std::string& line);

}  // namespace tv
