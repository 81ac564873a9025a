#pragma once

#include <kesu/foundation/Value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kesu::dev {

/// One record as the collector stores it and as `/good`, `/bad` and `/events` return it.
struct StoredRecord {
  std::int64_t id = 0;               // Counts from 1; never used twice, not even after a reset.
  std::int64_t arrivedMs = 0;        // Milliseconds since 1970.
  std::string path;                  // Where it was posted.
  std::string destination;           // Header "t", empty when there was none.
  std::string headers;               // All request headers, as one JSON object.
  std::string body;                  // Exactly as received.
  bool bodyIsObject = false;         // Whether the body is a JSON object.
  std::string messageId;             // "msg_id", empty when there is none.
  std::vector<std::string> reasons;  // Why it is bad, one sentence each; none = good.
  std::int64_t duplicateOf = 0;      // The first record with the same "msg_id"; 0 = none.
  bool wasStored = false;            // Probably waited in the sender's offline store.

  bool good() const { return reasons.empty(); }
};

/// Appends the record as one JSON object on one line. The body is embedded byte for byte under "record" when it is a
/// JSON object (numbers keep their spelling), else it becomes a text under "body".
void appendJson(const StoredRecord& record, std::string& out);

/// Reads what appendJson() wrote; the body is written anew by our JSON writer. Returns nothing for other values.
std::optional<StoredRecord> storedRecordFromJson(const Value& value);

/// Parses the body; empty when it is no JSON object.
Dictionary bodyOf(const StoredRecord& record);

}  // namespace kesu::dev
