#include "platform/linux/defaults/DefaultsWriter.h"

#include <utility>

#include "foundation/PropertyList.h"
#include "platform/linux/defaults/DefaultsSchema.h"
#include "platform/linux/defaults/StoredValue.h"

namespace kesu {
namespace {

std::int64_t drawNumber() {
  std::uint32_t drawn = 0;
  sqlite3_randomness(sizeof(drawn), &drawn);
  return drawn & kNumberMask;
}

std::int64_t drawStamp() {
  std::int64_t drawn = 0;
  sqlite3_randomness(sizeof(drawn), &drawn);
  return drawn & kStampMask;
}

}  // namespace

StoreStatus DefaultsWriter::prepare() {
  struct Source {
    const char* sql;
    SqliteStatement& statement;
  };
  const Source sources[] = {
      {"BEGIN IMMEDIATE", statements_.begin},
      {"COMMIT", statements_.commit},
      {"ROLLBACK", statements_.rollback},
      {"INSERT INTO entry(key, kind, value, number) VALUES(?1, ?2, ?3, ?4)"
       " ON CONFLICT(key) DO UPDATE SET kind=excluded.kind, value=excluded.value RETURNING number",
       statements_.put},
      {"UPDATE entry SET kind=?2, value=?3 WHERE key=?1", statements_.update},
      {"DELETE FROM entry WHERE key=?1 RETURNING number", statements_.remove},
      {"DELETE FROM suffix WHERE id BETWEEN ?1 AND ?2", statements_.removeSuffixes},
      {"SELECT number FROM entry WHERE key=?1", statements_.numberOf},
      {"SELECT id FROM suffix WHERE id BETWEEN ?1 AND ?2 ORDER BY id DESC LIMIT 1", statements_.lastSuffix},
      {"REPLACE INTO suffix(id, text) VALUES(?1, ?2)", statements_.append},
      {"UPDATE entry SET value=?3 WHERE key=?1 AND kind=?2 AND value=?4 RETURNING number", statements_.restamp},
  };
  for (const Source& source : sources) {
    const StoreStatus status = connection_.prepare(source.sql, source.statement);
    if (status != StoreStatus::Ok) {
      return status;
    }
  }
  return StoreStatus::Ok;
}

void DefaultsWriter::reset() {
  statements_ = {};
  rows_.clear();
}

StoreStatus DefaultsWriter::write(const std::vector<StoreChange>& changes) {
  // A lone statement is a transaction of its own.
  const bool isLone = changes.size() == 1 && isOneStatement(changes.front());
  const StoreStatus status = isLone ? apply(changes.front()) : writeTransaction(changes);
  if (status != StoreStatus::Ok) {
    for (const StoreChange& change : changes) {
      forget(change.key);
    }
  }
  return status;
}

bool DefaultsWriter::isOneStatement(const StoreChange& change) const {
  const auto known = rows_.find(change.key);
  return known != rows_.end() && (change.kind == StoreChange::Kind::Append ||
                                  (change.kind == StoreChange::Kind::Put && !known->second.hasSuffixes));
}

StoreStatus DefaultsWriter::writeTransaction(const std::vector<StoreChange>& changes) {
  StoreStatus status = connection_.run(statements_.begin.get());
  for (const StoreChange& change : changes) {
    if (status == StoreStatus::Ok) {
      status = apply(change);
    }
  }
  if (status == StoreStatus::Ok) {
    status = connection_.run(statements_.commit.get());
  }
  if (status != StoreStatus::Ok && sqlite3_get_autocommit(connection_.handle()) == 0) {
    const std::string reason = connection_.failureText();
    connection_.run(statements_.rollback.get());
    connection_.setFailureText(reason);
  }
  return status;
}

StoreStatus DefaultsWriter::apply(const StoreChange& change) {
  switch (change.kind) {
    case StoreChange::Kind::Put:
      return put(change.key, change.value, change.text);
    case StoreChange::Kind::PutParts:
      return putParts(change);
    case StoreChange::Kind::Remove:
      return remove(change.key);
    case StoreChange::Kind::Append:
      break;
  }
  return append(change.key, change.text);
}

StoreStatus DefaultsWriter::put(std::string_view key, const Value& value, const std::string& listText) {
  const bool needsList = listText.empty() && isContainer(value);
  const std::string list =
      needsList ? writePropertyList(value, PropertyListForm::Escaped).value_or(std::string()) : std::string();
  const auto known = rows_.find(key);
  if (known != rows_.end() && !known->second.hasSuffixes) {
    bindText(statements_.update.get(), 1, key);
    bindValue(statements_.update.get(), 2, value, needsList ? list : listText);
    const StoreStatus status = connection_.run(statements_.update.get());
    // No row is there when another process has removed the key.
    if (status != StoreStatus::Ok || sqlite3_changes(connection_.handle()) > 0) {
      return status;
    }
  }
  std::int64_t number = drawNumber();
  bindText(statements_.put.get(), 1, key);
  bindValue(statements_.put.get(), 2, value, needsList ? list : listText);
  sqlite3_bind_int64(statements_.put.get(), 4, number);
  StoreStatus status = connection_.run(statements_.put.get(), &number);
  if (status == StoreStatus::Ok) {
    status = removeSuffixes(number);
  }
  rows_.insert_or_assign(std::string(key), Rows{false, -1, firstSuffix(number), {}});
  return status;
}

StoreStatus DefaultsWriter::putParts(const StoreChange& change) {
  const std::int64_t stamp = drawStamp();
  std::int64_t number = -1;
  StoreStatus status = putStamp(change, stamp, number);
  if (status == StoreStatus::Ok) {
    const auto behind = static_cast<std::int64_t>(change.partCount);
    status = removeSuffixes(number, change.isWhole ? 0 : behind);
  }
  const std::int64_t first = firstSuffix(number);
  for (const auto& [place, text] : change.parts) {
    if (status == StoreStatus::Ok) {
      status = putSuffix(first + static_cast<std::int64_t>(place), text);
    }
  }
  if (status == StoreStatus::Ok) {
    rows_.insert_or_assign(std::string(change.key), Rows{true, stamp, first, {}});
  }
  return status;
}

// Puts the array's row or, for parts, changes the stamp that the last write left; sets `number` to that of the row.
StoreStatus DefaultsWriter::putStamp(const StoreChange& change, std::int64_t stamp, std::int64_t& number) {
  if (change.isWhole) {
    number = drawNumber();
    bindText(statements_.put.get(), 1, change.key);
    bindParts(statements_.put.get(), 2, stamp);
    sqlite3_bind_int64(statements_.put.get(), 4, number);
    return connection_.run(statements_.put.get(), &number);
  }
  const auto known = rows_.find(change.key);
  if (known == rows_.end() || known->second.stamp < 0) {
    return StoreStatus::Stale;
  }
  bindText(statements_.restamp.get(), 1, change.key);
  bindParts(statements_.restamp.get(), 2, stamp);
  sqlite3_bind_int64(statements_.restamp.get(), 4, known->second.stamp);
  const StoreStatus status = connection_.run(statements_.restamp.get(), &number);
  return status == StoreStatus::Ok && number < 0 ? StoreStatus::Stale : status;
}

StoreStatus DefaultsWriter::remove(std::string_view key) {
  forget(key);
  std::int64_t number = -1;
  bindText(statements_.remove.get(), 1, key);
  const StoreStatus status = connection_.run(statements_.remove.get(), &number);
  return status == StoreStatus::Ok && number >= 0 ? removeSuffixes(number) : status;
}

StoreStatus DefaultsWriter::removeSuffixes(std::int64_t number, std::int64_t from) {
  const std::int64_t first = firstSuffix(number);
  sqlite3_bind_int64(statements_.removeSuffixes.get(), 1, first + from);
  sqlite3_bind_int64(statements_.removeSuffixes.get(), 2, lastSuffix(number));
  return connection_.run(statements_.removeSuffixes.get());
}

StoreStatus DefaultsWriter::append(std::string_view key, std::string_view suffix) {
  auto known = rows_.find(key);
  if (known == rows_.end()) {
    const StoreStatus found = findRows(key);
    if (found != StoreStatus::Ok) {
      return found;
    }
    known = rows_.find(key);
  }
  Rows& rows = known->second;
  rows.hasSuffixes = true;
  rows.tailText.append(suffix);
  const StoreStatus status = putSuffix(rows.tail, rows.tailText);
  if (rows.tailText.size() >= kSuffixBytes) {
    ++rows.tail;
    rows.tailText.clear();
  }
  return status;
}

StoreStatus DefaultsWriter::putSuffix(std::int64_t id, std::string_view text) {
  sqlite3_bind_int64(statements_.append.get(), 1, id);
  bindText(statements_.append.get(), 2, text);
  return connection_.run(statements_.append.get());
}

StoreStatus DefaultsWriter::findRows(std::string_view key) {
  std::int64_t number = -1;
  bindText(statements_.numberOf.get(), 1, key);
  StoreStatus status = connection_.run(statements_.numberOf.get(), &number);
  if (status != StoreStatus::Ok || number < 0) {
    return status != StoreStatus::Ok ? status : put(key, Value(""), {});  // Another process removed the key.
  }
  const std::int64_t first = firstSuffix(number);
  std::int64_t last = first - 1;
  sqlite3_bind_int64(statements_.lastSuffix.get(), 1, first);
  sqlite3_bind_int64(statements_.lastSuffix.get(), 2, lastSuffix(number));
  status = connection_.run(statements_.lastSuffix.get(), &last);
  rows_.insert_or_assign(std::string(key), Rows{true, -1, last + 1, {}});
  return status;
}

void DefaultsWriter::knowParts(const std::string& key, std::int64_t number, std::int64_t stamp) {
  rows_.insert_or_assign(key, Rows{true, stamp, firstSuffix(number), {}});
}

void DefaultsWriter::forget(std::string_view key) {
  if (const auto known = rows_.find(key); known != rows_.end()) {
    rows_.erase(known);
  }
}

}  // namespace kesu
