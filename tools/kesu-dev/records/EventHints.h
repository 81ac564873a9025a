#pragma once

#include <string>
#include <vector>

#include "tools/kesu-dev/records/StoredRecord.h"

namespace kesu::dev {

/// Lists the keys of a catalogue event that the catalogue does not know: misspelt ones, perhaps. They do not make the
/// record bad, since hosts may add attributes of their own. Empty for other records. Any thread.
std::vector<std::string> eventHints(const StoredRecord& record, const Dictionary& body);

}  // namespace kesu::dev
