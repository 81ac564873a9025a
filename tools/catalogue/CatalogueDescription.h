#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "CatalogueTable.h"

namespace kesu::catalogue {

/// How an operation makes the value of a key. <kesu/events/Catalogue.h> tells the same at length.
enum class KeyKind {
  Object,     ///< The argument as it is; "" when it is missing.
  AsIs,       ///< The argument as it is; a missing one removes the key.
  Number,     ///< Decimal text of a number object.
  Decimal,    ///< Decimal text of a whole integer.
  Integer,    ///< Decimal text of an integer's low 32 bits.
  Seconds,    ///< Whole seconds.
  Latitude,   ///< Degrees, six decimals.
  Longitude,  ///< Degrees, six decimals.
  Flag,       ///< "1" or "0".
  WhenTrue,   ///< "1" or nothing.
  Constant,   ///< Always the same text.
};

struct KeyDescription {
  std::string key;
  KeyKind kind = KeyKind::Constant;
  std::optional<std::size_t> argument;  ///< Which one feeds it; none feeds a constant.
  std::string constant;                 ///< The text of a constant.
};

struct OperationDescription {
  const Operation* operation = nullptr;
  std::string event;                 ///< The name under "~e"; "" for an operation that sends no record.
  std::string destination;           ///< The letter of the table; "" likewise.
  bool updatesSceneFlow = false;     ///< It sends no record but appends to the scene flow.
  std::vector<KeyDescription> keys;  ///< In the order of the record.
};

/// What every operation writes, found by calling each of them with arguments that can be told apart and comparing the
/// records. A double stands in for the manager meanwhile, so call it while nothing else posts. Nothing is sent.
std::vector<OperationDescription> describeCatalogue();

/// The keys of every event, those of all operations that post it put together.
std::map<std::string, std::set<std::string>> keysOfEvents(const std::vector<OperationDescription>& descriptions);

/// The descriptions as one JSON text: {"operations": [{"class", "operation", "function", "event", "destination",
/// "arguments": [{"label", "kind", "keys"}], "keys": [{"key", "kind", "argument" or "value"}]}]}
std::string catalogueAsJson(const std::vector<OperationDescription>& descriptions);

/// The descriptions for a reader: a paragraph a class, two lines an operation.
std::string catalogueAsText(const std::vector<OperationDescription>& descriptions);

/// "object", "as is", "flag" ...: the words of <kesu/events/Catalogue.h>.
std::string_view kindName(KeyKind kind);
std::string_view kindName(ArgumentKind kind);

}  // namespace kesu::catalogue
