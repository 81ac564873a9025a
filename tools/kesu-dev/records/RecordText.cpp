#include "tools/kesu-dev/records/RecordText.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>

#include "foundation/Json.h"
#include "tools/kesu-dev/base/Fields.h"
#include "tools/kesu-dev/base/TablePrinter.h"
#include "tools/kesu-dev/base/Text.h"
#include "tools/kesu-dev/records/EventHints.h"
#include "tools/kesu-dev/records/KeyTable.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kLongestValue = 300;  // Three lines of a table; screen flows are longer.
constexpr std::size_t kNameColumns = 28;    // "launch: Foreground Inactive".
constexpr std::string_view kRed = "\x1b[31m";
constexpr std::string_view kYellow = "\x1b[33m";
constexpr std::string_view kPlain = "\x1b[0m";

// Whether recordName() has the value of a key already.
bool isInName(std::string_view destination, std::string_view key) {
  if (destination == "s") {
    return key == "~ns" || key == "~ld" || key == "~tf" || key == "~sd";
  }
  return key == (destination == "n" ? "action" : "~e");
}

// Common columns that are different in every record.
constexpr std::array<std::string_view, 4> kOwnColumns{"ace", "ase", "msg_id", "ldt"};

std::string valueText(const Value& value) {
  std::string text;
  if (value.text() != nullptr) {
    const bool needsQuotes = value.text()->empty() || value.text()->find(' ') != std::string::npos;
    text = needsQuotes ? '"' + *value.text() + '"' : *value.text();
  } else if (writeJson(value, text) != JsonStatus::Ok) {
    text = "?";
  }
  return shortened(printable(text), kLongestValue);
}

std::string stateName(const Dictionary& body) {
  const std::string code = printable(textIn(body, "~ns"));
  const StateInfo* state = findState(code);
  std::string name = state != nullptr ? std::string(state->meaning) : "state " + code;
  for (const std::string_view key : {"~ld", "~tf", "~sd"}) {
    const std::string detail = printable(textIn(body, key));
    name += detail.empty() ? "" : ": " + detail;
  }
  return name;
}

std::string traitName(const Dictionary& body) {
  if (body.contains("~ft")) {
    return "full traits";
  }
  std::set<std::string_view> names;
  for (const auto& entry : body) {
    const KeyInfo* key = findKey(entry.key);
    const KeyGroup group = key != nullptr ? key->group : KeyGroup::Event;
    if (group == KeyGroup::Trait || group == KeyGroup::Period || group == KeyGroup::Activation) {
      names.insert(groupName(group));
    }
  }
  return joined({names.begin(), names.end()}, ", ");
}

// Common columns that only some records have: shown with their record.
constexpr std::array<std::string_view, 5> kOccasionalColumns{"prd", "~uid", "long", "lat", "alt"};

bool isFolded(std::string_view key) {
  const KeyInfo* info = findKey(key);
  return info != nullptr && info->group == KeyGroup::Common &&
         std::find(kOccasionalColumns.begin(), kOccasionalColumns.end(), key) == kOccasionalColumns.end();
}

std::string destinationText(const StoredRecord& record) {
  const DestinationInfo* info = findDestination(record.destination);
  if (info == nullptr) {
    return record.destination.empty() ? "-" : printable(record.destination);
  }
  return std::string(info->code) + " " + std::string(info->name);
}

// "kak=demo" when all records agree, "kaid: 2 values" when not.
std::vector<std::string> foldedColumns(const std::vector<Dictionary>& bodies) {
  std::vector<std::string> result;
  for (const KeyInfo& key : allKeys()) {
    if (!isFolded(key.key) || std::find(kOwnColumns.begin(), kOwnColumns.end(), key.key) != kOwnColumns.end()) {
      continue;
    }
    std::set<std::string> values;
    for (const Dictionary& body : bodies) {
      if (const Value* value = body.find(key.key)) {
        values.insert(valueText(*value));
      }
    }
    if (values.size() == 1) {
      result.push_back(std::string(key.key) + "=" + *values.begin());
    } else if (values.size() > 1) {
      result.push_back(std::string(key.key) + ": " + std::to_string(values.size()) + " values");
    }
  }
  return result;
}

std::string details(const StoredRecord& record, const Dictionary& body) {
  std::vector<std::string> lines = recordMarks(record);
  for (std::string& line : lines) {
    line = "! " + line;
  }
  for (std::string& hint : eventHints(record, body)) {
    lines.push_back(std::move(hint));
  }
  const std::string pairs =
      record.bodyIsObject ? joined(recordPairs(record, body), "  ") : shortened(printable(record.body), kLongestValue);
  if (!pairs.empty()) {
    lines.push_back(pairs);
  }
  return joined(lines, "\n");
}

void addCounts(TablePrinter& table, const std::string& code, const std::string& meaning, const Counts& counts) {
  table.addRow({code, std::to_string(counts.total()), std::to_string(counts.good), std::to_string(counts.bad),
                std::to_string(counts.duplicates), std::to_string(counts.wasStored), meaning});
}

}  // namespace

std::string recordName(const StoredRecord& record, const Dictionary& body) {
  if (record.destination == "s") {
    return stateName(body);
  }
  if (record.destination == "t") {
    return traitName(body);
  }
  if (record.destination == "i") {
    return "installation";
  }
  if (record.destination.empty()) {
    return printable(record.path);  // A request to the messaging service, or no record at all.
  }
  return printable(textIn(body, record.destination == "n" ? "action" : "~e"));
}

std::vector<std::string> recordPairs(const StoredRecord& record, const Dictionary& body) {
  std::vector<std::string> pairs;
  for (const auto& entry : body) {
    if (!isFolded(entry.key) && !isInName(record.destination, entry.key)) {
      pairs.push_back(printable(entry.key) + "=" + valueText(entry.value));
    }
  }
  return pairs;
}

std::vector<std::string> recordMarks(const StoredRecord& record) {
  std::vector<std::string> marks;
  for (const std::string& reason : record.reasons) {
    marks.push_back("BAD: " + printable(reason));
  }
  if (record.duplicateOf != 0) {
    marks.push_back("duplicate of #" + std::to_string(record.duplicateOf));
  }
  if (record.wasStored) {
    marks.emplace_back("was stored");
  }
  return marks;
}

std::string recordLine(const StoredRecord& record, bool colours) {
  const Dictionary body = bodyOf(record);
  std::string line = clockText(record.arrivedMs) + "  " + padded("#" + std::to_string(record.id), 5) + "  " +
                     padded(destinationText(record), 11) + "  " + padded(recordName(record, body), kNameColumns) +
                     "  " + joined(recordPairs(record, body), "  ");
  std::vector<std::string> remarks = recordMarks(record);
  for (std::string& hint : eventHints(record, body)) {
    remarks.push_back(std::move(hint));
  }
  const std::string marks = joined(remarks, "; ");
  if (!marks.empty()) {
    line += (line.ends_with(' ') ? "[" : "  [");
    line += colours ? std::string(record.good() ? kYellow : kRed) + marks + std::string(kPlain) : marks;
    line += "]";
  }
  return trimmedRight(line);
}

std::string recordTable(const std::vector<StoredRecord>& records, std::size_t width) {
  std::vector<Dictionary> bodies;
  TablePrinter table({"#", "time", "destination", "name", "what it says"}, width);
  for (const StoredRecord& record : records) {
    bodies.push_back(bodyOf(record));
    table.addRow({std::to_string(record.id), clockText(record.arrivedMs), destinationText(record),
                  recordName(record, bodies.back()), details(record, bodies.back())});
  }
  std::string out;
  const std::string common = joined(foldedColumns(bodies), "  ");
  if (!common.empty()) {
    for (const std::string& line : wrapped("In every record: " + common, width)) {
      out += line + "\n";
    }
    out += "\n";
  }
  return out + table.text();
}

std::string summaryTable(const CountsByDestination& counts, std::size_t width) {
  TablePrinter table({"to", "records", "good", "bad", "duplicates", "was stored", "what"}, width);
  for (const auto& [destination, one] : counts) {
    const DestinationInfo* info = findDestination(destination);
    const std::string code = destination.empty() ? "-" : printable(destination);
    const std::string unknown = destination.empty() ? "requests that are no records" : "no known destination";
    addCounts(table, code, info != nullptr ? std::string(info->meaning) : unknown, one);
  }
  addCounts(table, "all", "", sum(counts));
  return table.text();
}

}  // namespace kesu::dev
