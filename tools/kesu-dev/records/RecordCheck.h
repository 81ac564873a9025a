#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kesu::dev {

/// What a request to the collector carries, as far as the check looks at it. The views must outlive the call only.
struct WireRecord {
  std::string_view destination;  // Header "t"; empty when missing.
  std::string_view version;      // Header "v"; empty when missing.
  std::string_view contentType;
  std::string_view body;
};

/// What the check found.
struct CheckResult {
  /// One plain sentence for each thing that is wrong; none means that the record is good.
  std::vector<std::string> reasons;

  /// "msg_id", when it is a text; it tells whether the record came before. Set for bad records too.
  std::string messageId;

  /// Whether the body is a JSON object at all.
  bool isObject = false;

  /// A hint, not a fault: the record was sent so long after it was made that it probably waited in the offline store.
  bool wasStored = false;
};

/// How far "ase" may lie behind "ace" before a record counts as stored meanwhile, in milliseconds.
inline constexpr std::int64_t kFreshMilliseconds = 2000;

/// Whether a Content-Type says JSON, with parameters or without. Pure.
bool isJsonType(std::string_view contentType);

/// Checks one request against the wire format. Pure: no state, no clock, no I/O.
CheckResult checkRecord(const WireRecord& record);

}  // namespace kesu::dev
