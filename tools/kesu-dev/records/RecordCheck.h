#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/kesu-dev/records/KeyTable.h"

namespace kesu::dev {

/// The parts of a request that the check reads. The views must outlive the call only.
struct WireRecord {
  std::string_view destination;  // Header "t"; empty when missing.
  std::string_view version;      // Header "v"; empty when missing.
  std::string_view contentType;
  std::string_view body;
};

/// What the check found.
struct CheckResult {
  /// Why the record is bad, one plain sentence each; none = good.
  std::vector<std::string> reasons;

  /// "msg_id", when it is a text: equal ones mark duplicates. Set for bad records too.
  std::string messageId;

  /// Whether the body is a JSON object at all.
  bool isObject = false;

  /// A hint, not a fault: the record was sent so long after its creation that it probably waited in the offline store.
  bool wasStored = false;
};

/// Delay between "ace" and "ase" from which a record counts as stored meanwhile, in milliseconds. A first attempt takes
/// less, even on a slow box.
inline constexpr std::int64_t kFreshMilliseconds = 2000;

/// Quotes a text of a sender: printable, cut to a readable length.
std::string quoted(std::string_view text);

/// Returns why a Content-Type is not JSON (parameters are ignored); empty when it is. Pure.
std::string typeFault(std::string_view contentType);

/// Returns why a key of a body is bad: missing (a null value) or of another form; empty when it is good. Pure.
std::string keyFault(std::string_view key, std::string_view meaning, KeyForm form, const Value* value);

/// Checks one request against the wire format. Pure: no state, no clock, no I/O.
CheckResult checkRecord(const WireRecord& record);

}  // namespace kesu::dev
