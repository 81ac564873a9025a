#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/defaults/DefaultsConnection.h"

namespace kesu {

/// One change that a transaction makes to the store.
struct StoreChange {
  enum class Kind {
    Put,       ///< `value` replaces what is under the key, appended texts included.
    PutParts,  ///< `parts` replace those of the array under the key, which then has `partCount` of them; all of it when
               ///< `isWhole`.
    Remove,    ///< The key is removed, appended texts included.
    Append     ///< `text` is appended to the text under the key, which exists.
  };

  Kind kind = Kind::Put;
  std::string_view key;
  Value value;       ///< For Put.
  std::string text;  ///< For Append: the suffix. For Put of an array or dictionary: its property list, if made already.
  std::map<std::size_t, std::string> parts;  ///< Property lists of parts of an array by their place.
  std::size_t partCount = 0;
  bool isWhole = false;
};

/// Writes the tables of a DefaultsStore. It remembers so much of each key's rows that the next write need not read them
/// first. Statements are kept: reset() them before the connection closes.
class DefaultsWriter {
 public:
  /// A suffix row of this many bytes is full: rewriting a row must stay within one page.
  static constexpr std::size_t kSuffixBytes = 256;

  /// `connection` must outlive the writer.
  explicit DefaultsWriter(DefaultsConnection& connection) : connection_(connection) {}

  /// Compiles the statements, on an open connection with the tables in it.
  StoreStatus prepare();

  /// Destroys the statements and forgets the rows.
  void reset();

  /// Makes all changes in one transaction, or none.
  StoreStatus write(const std::vector<StoreChange>& changes);

  /// Takes note that the array in parts under `key` was read as the write with that `stamp` left it. Its parts can then
  /// be replaced one by one.
  void knowParts(const std::string& key, std::int64_t number, std::int64_t stamp);

 private:
  /// What is known of the rows of a key.
  struct Rows {
    bool hasSuffixes = false;
    std::int64_t stamp = -1;  // Of an array in parts: the number that the last write left; else -1.
    std::int64_t tail = 0;    // Id of the suffix row that the next append changes.
    std::string tailText;     // The present text of that row.
  };
  using KnownRows = std::map<std::string, Rows, std::less<>>;

  struct Statements {
    SqliteStatement begin, commit, rollback, put, update, remove, removeSuffixes, numberOf, lastSuffix, append, restamp;
  };

  StoreStatus writeTransaction(const std::vector<StoreChange>& changes);
  StoreStatus apply(const StoreChange& change);
  bool isOneStatement(const StoreChange& change) const;
  StoreStatus put(std::string_view key, const Value& value, const std::string& listText);
  StoreStatus putParts(const StoreChange& change);
  StoreStatus putStamp(const StoreChange& change, std::int64_t stamp, std::int64_t& number);
  StoreStatus remove(std::string_view key);
  StoreStatus append(std::string_view key, std::string_view suffix);
  StoreStatus findRows(std::string_view key);
  StoreStatus removeSuffixes(std::int64_t number, std::int64_t from = 0);
  StoreStatus putSuffix(std::int64_t id, std::string_view text);
  void forget(std::string_view key);

  DefaultsConnection& connection_;
  Statements statements_;
  KnownRows rows_;
};

}  // namespace kesu
