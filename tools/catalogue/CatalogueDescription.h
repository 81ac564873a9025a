#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

#include "CatalogueTable.h"

namespace kesu::catalogue {

/// Returns the keys of every event. An event that several operations post has the keys of all of them.
std::map<std::string, std::set<std::string>> keysOfEvents();

/// Returns the catalogue as one JSON text: {"operations": [{"class", "operation", "function", "event", "destination",
/// "updatesSceneFlow", "arguments": [{"label", "kind", "keys"}], "keys": [{"key", "kind", "argument" or "value"}]}]}
std::string catalogueAsJson();

/// Returns the catalogue for a reader: one paragraph per class, two lines per operation.
std::string catalogueAsText();

/// Returns the word of <kesu/events/Catalogue.h> for a kind: "object", "as is", "flag" ...
std::string_view kindName(KeyKind kind);
std::string_view kindName(ArgumentKind kind);

}  // namespace kesu::catalogue
