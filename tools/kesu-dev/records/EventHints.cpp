#include "tools/kesu-dev/records/EventHints.h"

#include <map>
#include <set>

#include "CatalogueDescription.h"
#include "tools/kesu-dev/base/Text.h"
#include "tools/kesu-dev/records/KeyTable.h"

namespace kesu::dev {
namespace {

const std::map<std::string, std::set<std::string>>& knownEvents() {
  static const auto events = catalogue::keysOfEvents();
  return events;
}

}  // namespace

std::vector<std::string> eventHints(const StoredRecord& record, const Dictionary& body) {
  std::vector<std::string> hints;
  const std::string* name = body.findText("~e");
  const auto event = name != nullptr && record.destination != "t" ? knownEvents().find(*name) : knownEvents().end();
  if (event == knownEvents().end()) {
    return hints;
  }
  for (const auto& entry : body) {
    const bool isOurs = findKey(entry.key) != nullptr || event->second.contains(entry.key);
    if (!isOurs) {
      hints.push_back("hint: \"" + printable(entry.key) + "\" is no key of the catalogue's " + event->first);
    }
  }
  return hints;
}

}  // namespace kesu::dev
