#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tools/kesu-dev/records/RecordStore.h"
#include "tools/kesu-dev/records/StoredRecord.h"

namespace kesu::dev {

/// Names a record in a word or two: the event's name, "launch: Foreground Inactive", "full traits", ...
std::string recordName(const StoredRecord& record, const Dictionary& body);

/// Lists "key=value" for every key that is neither a common column nor part of the name, in the record's order.
std::vector<std::string> recordPairs(const StoredRecord& record, const Dictionary& body);

/// Lists what is special about a record: "duplicate of #4", "was stored", "BAD: ...".
std::vector<std::string> recordMarks(const StoredRecord& record);

/// Formats one line: time, number, destination, name, pairs and marks. With `colours` the marks are coloured.
std::string recordLine(const StoredRecord& record, bool colours);

/// Formats a table of records, the common columns folded into one paragraph above it.
std::string recordTable(const std::vector<StoredRecord>& records, std::size_t width);

/// Formats the counts by destination and their sum.
std::string summaryTable(const CountsByDestination& counts, std::size_t width);

}  // namespace kesu::dev
