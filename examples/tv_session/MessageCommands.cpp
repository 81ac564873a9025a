#include "MessageCommands.h"

#include <kesu.h>
#include <kesu/support/CollectionHelpers.h>

#include <cstdint>
#include <cstdio>
#include <optional>
#include <stdexcept>

namespace tv {
namespace {

using Command = std::function<void(const ScriptLine&)>;

void print(const std::string& what, const std::string& text) {
  std::printf("tv_session: %s: %s\n", what.c_str(), text.c_str());
  std::fflush(stdout);
}

// Prints the arguments of a handler.
std::function<void(const kesu::Object&)> printer(const std::string& what) {
  return [what](const kesu::Object& result) {
    print(what, kesu::serializeDictionaryToString({{"result", result.value_or(kesu::Null{})}}).value_or("no JSON"));
  };
}

void fetchBody(const ScriptLine& line) {
  kesu::Kesu::getMessageBodyWithCampaignID(line.word(0), line.word(1), printer("body"));
}

void askForTag(const ScriptLine& line) {
  const bool isSet = kesu::KesuPersonalizationIntelligence::isTagSet(line.word(0));
  print("is-tag " + line.word(0), isSet ? "yes" : "no");
}

}  // namespace

kesu::KesuInAppMessageType messageType(const ScriptLine& line) {
  using Type = kesu::KesuInAppMessageType;
  static const std::map<std::string, Type> kNames{{"unread", Type::Unread}, {"read", Type::Read}, {"all", Type::All}};
  const std::string name = line.word(0, "unread");
  if (const auto found = kNames.find(name); found != kNames.end()) {
    return found->second;
  }
  if (const std::optional<double> number = line.number(0)) {
    return static_cast<Type>(static_cast<std::int64_t>(*number));
  }
  throw std::runtime_error("messages are unread, read or all, or 0 to 2, not \"" + name + "\"");
}

std::map<std::string, Command> messageCommands() {
  return {
      {"count",
       [](const ScriptLine&) {
         kesu::Kesu::countNewUnFetched([](std::int64_t count) { print("count", std::to_string(count)); });
       }},
      {"headers",
       [](const ScriptLine& line) { kesu::Kesu::getMessageHeadersForType(messageType(line), printer("headers")); }},
      {"messages",
       [](const ScriptLine& line) { kesu::Kesu::getMessagesForType(messageType(line), printer("messages")); }},
      {"body", fetchBody},
      {"tags", [](const ScriptLine&) { kesu::KesuPersonalizationIntelligence::getTags(printer("tags")); }},
      {"is-tag", askForTag},
  };
}

}  // namespace tv
