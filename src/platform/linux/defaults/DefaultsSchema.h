#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace kesu {

// The tables of a DefaultsStore. All of it is the format on disk.
//
// Table "entry" has a row for each key: a number, the kind of value and the value. Table "suffix" has further rows of
// an entry under ids that begin with its number: what was appended to a text, or the parts of a long array, whose row
// in "entry" then has a random number (its stamp) that every write changes.

/// Makes the tables. Their version is the database's user_version, 1.
inline constexpr char kMakeDefaultsTables[] =
    "BEGIN IMMEDIATE;"
    "CREATE TABLE IF NOT EXISTS entry(key TEXT PRIMARY KEY NOT NULL, number INTEGER NOT NULL, kind INTEGER NOT NULL,"
    " value) WITHOUT ROWID;"
    "CREATE TABLE IF NOT EXISTS suffix(id INTEGER PRIMARY KEY, text TEXT NOT NULL);"
    "PRAGMA user_version=1;"
    "COMMIT";

/// Counts what is in a database beside these tables.
inline constexpr char kCountOtherTables[] =
    "SELECT count(*) FROM sqlite_schema WHERE tbl_name NOT IN ('entry', 'suffix')";

/// Elements in each part of a long array but the last. With more a small change writes more, with fewer an array has
/// more rows.
inline constexpr std::size_t kPartElements = 16;

/// Numbers of entries are drawn at random within this mask, so that two processes that share the file do not use the
/// same one.
inline constexpr std::uint32_t kNumberMask = 0x7fffffff;

/// Stamps are drawn within this mask.
inline constexpr std::int64_t kStampMask = std::numeric_limits<std::int64_t>::max();

/// The id of the first suffix row of the entry with that number.
constexpr std::int64_t firstSuffix(std::int64_t number) {
  return (number & kNumberMask) << 32;
}

/// The last id that a suffix row of it can have.
constexpr std::int64_t lastSuffix(std::int64_t number) {
  return firstSuffix(number) + std::numeric_limits<std::uint32_t>::max();
}

}  // namespace kesu
