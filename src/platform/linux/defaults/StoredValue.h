#pragma once

#include <kesu/foundation/Value.h>
#include <sqlite3.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesu {

// How a value lies in two columns of the user defaults: its kind, and its content in the database's own form. Arrays
// and dictionaries are property lists. This file owns the format. Pointers that are bound must stay valid until the
// statement was run.

/// Binds a text, which may be empty and may hold any byte.
void bindText(sqlite3_stmt* statement, int position, std::string_view text);

/// Binds the kind at `kindPosition` and the content at the position after it. `listText` is the property list of an
/// array or dictionary, and not looked at for other kinds.
void bindValue(sqlite3_stmt* statement, int kindPosition, const Value& value, const std::string& listText);

/// Binds what stands for an array that lies in parts: its kind, and the stamp of the last write.
void bindParts(sqlite3_stmt* statement, int kindPosition, std::int64_t stamp);

/// Whether the row is that of an array in parts. Its value is an empty array then, for the parts to be added to.
bool columnIsInParts(sqlite3_stmt* row, int kindColumn);

/// Whether the row is that of an array or dictionary. Its content need not be in the row.
bool columnIsContainer(sqlite3_stmt* row, int kindColumn);

/// The bytes of a text or blob column. Valid until the next step.
std::string_view columnBytes(sqlite3_stmt* row, int column);

/// The value in `kindColumn` and the column after it; nothing when they do not make sense.
std::optional<Value> columnValue(sqlite3_stmt* row, int kindColumn);

}  // namespace kesu
