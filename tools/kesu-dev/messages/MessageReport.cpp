#include "tools/kesu-dev/messages/MessageReport.h"

#include <map>
#include <utility>

#include "services/MessageKeys.h"
#include "tools/kesu-dev/base/Fields.h"
#include "tools/kesu-dev/base/TablePrinter.h"
#include "tools/kesu-dev/base/Text.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kShownHooks = 10;  // The latest; the JSON has all.

struct Response {
  std::int64_t delivered = 0;
  Array presses;
};

std::map<MessageKey, Response> responsesIn(const std::vector<StoredRecord>& records) {
  std::map<MessageKey, Response> responses;
  for (const StoredRecord& record : records) {
    const Dictionary body = bodyOf(record);
    const std::string action = textIn(body, kActionKey);
    if (record.duplicateOf != 0 || (action != kActionDelivered && action != kActionPressed)) {
      continue;
    }
    Response& response = responses[{textIn(body, kMessageIdKey), textIn(body, kCampaignIdKey)}];
    if (action == kActionDelivered) {
      ++response.delivered;
    } else {
      response.presses.emplace_back(Dictionary{{"button", textIn(body, kButtonIdKey)},
                                               {"title", textIn(body, kButtonNameKey)},
                                               {"arrivedMs", record.arrivedMs}});
    }
  }
  return responses;
}

Dictionary describe(const MessageKey& key, const DeliveryLog& log, Response response) {
  const MessageTally tally = log.tally(key);
  return {{std::string(kMessageIdKey), key.mid}, {std::string(kCampaignIdKey), key.cid},
          {"asHeader", tally.asHeader},          {"whole", tally.whole},
          {"delivered", response.delivered},     {"presses", std::move(response.presses)}};
}

std::string pressesText(const Dictionary& row) {
  std::map<std::string, int> counts;
  for (const Dictionary& press : objectsOf(listIn(row, "presses"))) {
    ++counts[printable(textIn(press, "button") + " " + textIn(press, "title"))];
  }
  std::vector<std::string> texts;
  texts.reserve(counts.size());
  for (const auto& [name, count] : counts) {
    texts.push_back(name + " (" + std::to_string(count) + ")");
  }
  return joined(texts, ", ");
}

void addRow(const Dictionary& row, TablePrinter& table) {
  const std::string file = textIn(row, "file");
  table.addRow({printable(textIn(row, kMessageIdKey)), printable(textIn(row, kCampaignIdKey)),
                printable(textIn(row, "title")), std::to_string(numberIn(row, "asHeader")),
                std::to_string(numberIn(row, "whole")), std::to_string(numberIn(row, "delivered")),
                file.empty() ? "(no longer in the directory) " + pressesText(row) : pressesText(row)});
}

}  // namespace

Dictionary describeMessages(const MessageReading& reading, const DeliveryLog& log,
                            const std::vector<StoredRecord>& records) {
  std::map<MessageKey, Response> responses = responsesIn(records);
  Array messages;
  for (const Message& message : reading.messages) {
    const MessageKey key{message.mid, message.cid};
    Dictionary row = describe(key, log, std::move(responses[key]));
    row.set("title", message.title);
    row.set("file", message.file);
    row.set("image", message.image);
    messages.emplace_back(std::move(row));
    responses.erase(key);
  }
  for (auto& [key, response] : responses) {
    messages.emplace_back(describe(key, log, std::move(response)));
  }
  Array hooks;
  for (const HookCall& call : log.hooks()) {
    hooks.emplace_back(Dictionary{{"arrivedMs", call.arrivedMs}, {"body", call.body}});
  }
  return {{"messages", std::move(messages)},
          {"tags", reading.tags},
          {"hooks", std::move(hooks)},
          {"problems", listOf(reading.problems)}};
}

std::string messageTable(const Dictionary& report, std::size_t width) {
  TablePrinter table({"mid", "cid", "title", "headers", "bodies", "delivered", "buttons pressed"}, width);
  for (const Dictionary& row : objectsOf(listIn(report, "messages"))) {
    addRow(row, table);
  }
  std::string text = table.text();
  const std::vector<Dictionary> hooks = objectsOf(listIn(report, "hooks"));
  for (std::size_t i = hooks.size() > kShownHooks ? hooks.size() - kShownHooks : 0; i < hooks.size(); ++i) {
    text += "web hook called at " + clockText(numberIn(hooks[i], "arrivedMs")) + ": " +
            printable(textIn(hooks[i], "body")) + "\n";
  }
  for (const std::string& problem : textsOf(listIn(report, "problems"))) {
    text += "skipped " + printable(problem) + "\n";
  }
  return text;
}

}  // namespace kesu::dev
