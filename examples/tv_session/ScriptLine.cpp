#include "ScriptLine.h"

#include <charconv>
#include <utility>

namespace tv {
namespace {

std::vector<std::string> splitWords(const std::string& line) {
  std::vector<std::string> words;
  std::string word;
  bool inWord = false;
  bool quoted = false;
  for (const char character : line) {
    if (character == '#' && !inWord && !quoted) {
      break;
    }
    const bool separates = (character == ' ' || character == '\t') && !quoted;
    if (character == '"') {
      quoted = !quoted;
      inWord = true;
    } else if (!separates) {
      word += character;
      inWord = true;
    } else if (inWord) {
      words.push_back(std::exchange(word, ""));
      inWord = false;
    }
  }
  if (inWord) {
    words.push_back(word);
  }
  return words;
}

}  // namespace

std::string ScriptLine::word(std::size_t i, const std::string& fallback) const {
  return i < words.size() ? words[i] : fallback;
}

std::optional<double> ScriptLine::number(std::size_t i) const {
  const std::string text = word(i);
  const char* begin = text.data() + (text.starts_with('+') ? 1 : 0);
  const char* const textEnd = text.data() + text.size();
  double number = 0.0;
  const auto [end, error] = std::from_chars(begin, textEnd, number);
  return error == std::errc() && end == textEnd ? std::optional(number) : std::nullopt;
}

ScriptLine parseScriptLine(const std::string& line) {
  ScriptLine parsed;
  for (std::string& word : splitWords(line)) {
    const std::size_t equals = word.find('=');
    if (parsed.command.empty()) {
      parsed.command = word;
    } else if (equals != std::string::npos && equals > 0) {
      parsed.attributes.set(word.substr(0, equals), word.substr(equals + 1));
    } else {
      parsed.words.push_back(std::move(word));
    }
  }
  return parsed;
}

}  // namespace tv
