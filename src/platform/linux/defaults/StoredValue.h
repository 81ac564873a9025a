#pragma once

#include <kesu/foundation/Value.h>
#include <sqlite3.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesu {

// How a value is stored in two columns of the user defaults: its kind, and its content in the database's own form.
// Arrays and dictionaries are property lists. This file owns the format. Bound texts and values must outlive the run of
// the statement.

/// Whether a value is an array or dictionary.
bool isContainer(const Value& value);

/// Binds a text, which may be empty and may have any byte.
void bindText(sqlite3_stmt* statement, int position, std::string_view text);

/// Binds the kind at `kindPosition` and the content at the position after it. `listText` is the property list of an
/// array or dictionary, and ignored for other kinds.
void bindValue(sqlite3_stmt* statement, int kindPosition, const Value& value, const std::string& listText);

/// Binds the row of an array in parts: its kind, and the stamp of the last write.
void bindParts(sqlite3_stmt* statement, int kindPosition, std::int64_t stamp);

/// Whether the row is that of an array in parts. Its value is then an empty array, to which the parts are appended.
bool columnIsInParts(sqlite3_stmt* row, int kindColumn);

/// Whether the row is that of an array or dictionary. Its content need not be in the row.
bool columnIsContainer(sqlite3_stmt* row, int kindColumn);

/// The bytes of a text or blob column. Valid until the next step.
std::string_view columnBytes(sqlite3_stmt* row, int column);

/// The value in `kindColumn` and the column after it; nothing when it cannot be decoded.
std::optional<Value> columnValue(sqlite3_stmt* row, int kindColumn);

}  // namespace kesu
