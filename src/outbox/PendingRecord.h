#pragma once

#include <kesu/foundation/Value.h>

#include <array>
#include <cstdint>

namespace kesu {

/// What a record still needs before it can be sent.
enum class RecordKind : std::uint8_t {
  Complete = 0,        ///< Nothing.
  Table = 1,           ///< The common columns behind its entries, and the network class.
  ColumnsBehind = 2,   ///< The common columns behind its entries.
  ColumnsInFront = 3,  ///< The common columns in front of its entries.
  Traits = 4,          ///< The common columns behind its entries, and the trait block of type `detail`.
  State = 5            ///< The common columns in front of its entries, and the state of the device.
};

/// A record as it was taken: what is known at that moment, and what the rest is made from later.
struct PendingRecord {
  RecordKind kind = RecordKind::Complete;
  char destination = '\0';  ///< Table of the collector; 0 when `entries` name it.
  char detail = '\0';       ///< Traits: the type. State: the state code.
  bool hasContext = true;   ///< Whether the library had its key: records from before carry no common columns.
  double moment = 0.0;      ///< When it was taken, in seconds since 1970.
  std::array<std::uint8_t, 16> identifier = {};
  Dictionary entries;
};

}  // namespace kesu
