#include "tools/kesu-dev/messages/MessageReport.h"

#include <map>
#include <utility>

#include "tools/kesu-dev/base/TablePrinter.h"
#include "tools/kesu-dev/base/Text.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kShownHooks = 10;

struct Response {
  std::int64_t delivered = 0;
  Array presses;
};

std::string textIn(const Dictionary& from, std::string_view key) {
  const std::string* text = from.findText(key);
  return text == nullptr ? std::string() : *text;
}

std::int64_t numberIn(const Dictionary& from, std::string_view key) {
  const Value* value = from.find(key);
  return value == nullptr ? 0 : value->integerValue();
}

std::vector<Dictionary> rowsIn(const Dictionary& from, std::string_view key) {
  std::vector<Dictionary> rows;
  const Value* list = from.find(key);
  for (const Value& row : list != nullptr && list->array() != nullptr ? *list->array() : Array()) {
    rows.push_back(row.dictionary() != nullptr ? *row.dictionary() : Dictionary());
  }
  return rows;
}

std::map<MessageKey, Response> responsesIn(const std::vector<StoredRecord>& records) {
  std::map<MessageKey, Response> responses;
  for (const StoredRecord& record : records) {
    const Dictionary body = bodyOf(record);
    const std::string action = textIn(body, "action");
    if (record.duplicateOf != 0 || (action != "delivered" && action != "cta")) {
      continue;
    }
    Response& response = responses[{textIn(body, "mid"), textIn(body, "cid")}];
    if (action == "delivered") {
      ++response.delivered;
    } else {
      response.presses.emplace_back(Dictionary{
          {"button", textIn(body, "btnId")}, {"title", textIn(body, "btnName")}, {"arrivedMs", record.arrivedMs}});
    }
  }
  return responses;
}

Dictionary describe(const MessageKey& key, const DeliveryLog& log, Response response) {
  const MessageTally tally = log.tally(key);
  return {{"mid", key.mid},
          {"cid", key.cid},
          {"asHeader", tally.asHeader},
          {"whole", tally.whole},
          {"delivered", response.delivered},
          {"presses", std::move(response.presses)}};
}

std::string pressesText(const Dictionary& row) {
  std::map<std::string, int> counts;
  for (const Dictionary& press : rowsIn(row, "presses")) {
    ++counts[printable(textIn(press, "button") + " " + textIn(press, "title"))];
  }
  std::string text;
  for (const auto& [name, count] : counts) {
    text += (text.empty() ? "" : ", ") + name + " (" + std::to_string(count) + ")";
  }
  return text;
}

void addRow(const Dictionary& row, TablePrinter& table) {
  const std::string file = textIn(row, "file");
  table.addRow({printable(textIn(row, "mid")), printable(textIn(row, "cid")), printable(textIn(row, "title")),
                std::to_string(numberIn(row, "asHeader")), std::to_string(numberIn(row, "whole")),
                std::to_string(numberIn(row, "delivered")),
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
  Array problems;
  for (const std::string& problem : reading.problems) {
    problems.emplace_back(validUtf8(problem));
  }
  return {{"messages", std::move(messages)},
          {"tags", reading.tags},
          {"hooks", std::move(hooks)},
          {"problems", std::move(problems)}};
}

std::string messageTable(const Dictionary& report, std::size_t width) {
  TablePrinter table({"mid", "cid", "title", "headers", "bodies", "delivered", "buttons pressed"}, width);
  for (const Dictionary& row : rowsIn(report, "messages")) {
    addRow(row, table);
  }
  std::string text = table.text();
  const std::vector<Dictionary> hooks = rowsIn(report, "hooks");
  for (std::size_t i = hooks.size() > kShownHooks ? hooks.size() - kShownHooks : 0; i < hooks.size(); ++i) {
    text += "web hook called at " + clockText(numberIn(hooks[i], "arrivedMs")) + ": " +
            printable(textIn(hooks[i], "body")) + "\n";
  }
  const Value* problems = report.find("problems");
  for (const Value& problem : problems != nullptr && problems->array() != nullptr ? *problems->array() : Array()) {
    text += "skipped " + printable(problem.text() != nullptr ? *problem.text() : "") + "\n";
  }
  return text;
}

}  // namespace kesu::dev
