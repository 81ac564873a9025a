#pragma once

#include <string>
#include <vector>

#include "tools/kesu-dev/records/StoredRecord.h"

namespace kesu::dev {

/// Hints about an event of the catalogue: which of its keys the catalogue does not know. A host may add attributes of
/// its own, so this is nothing bad; it finds misspelt keys. Empty for other records. Any thread.
std::vector<std::string> eventHints(const StoredRecord& record, const Dictionary& body);

}  // namespace kesu::dev
