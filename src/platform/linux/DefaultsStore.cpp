#include "platform/linux/DefaultsStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <optional>
#include <system_error>

#include "foundation/PropertyList.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/StoredValue.h"

namespace kesu {
namespace {

constexpr int kOpenFlags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW | SQLITE_OPEN_EXRESCODE;
constexpr int kPageBytes = 1024;
constexpr int kFrameBytes = kPageBytes + 24;

// Small pages, because every synchronize() writes at least one of them whole. Checkpoints run on another connection.
constexpr char kConfigure[] =
    "PRAGMA synchronous=OFF; PRAGMA page_size=1024; PRAGMA journal_mode=WAL; PRAGMA wal_autocheckpoint=0;"
    "PRAGMA temp_store=MEMORY; PRAGMA secure_delete=OFF; PRAGMA trusted_schema=OFF; PRAGMA cell_size_check=ON;"
    "PRAGMA cache_size=-512";

constexpr char kMakeTables[] =
    "BEGIN IMMEDIATE;"
    "CREATE TABLE IF NOT EXISTS entry(key TEXT PRIMARY KEY NOT NULL, number INTEGER NOT NULL, kind INTEGER NOT NULL,"
    " value) WITHOUT ROWID;"
    "CREATE TABLE IF NOT EXISTS suffix(id INTEGER PRIMARY KEY, text TEXT NOT NULL);"
    "PRAGMA user_version=1;"
    "COMMIT";

// The suffix rows of the entry with number n have the ids from n << 32 on. Numbers are drawn at random: then two
// processes that share the file do not give the same one.
constexpr int kNumberShift = 32;
constexpr std::uint32_t kNumberMask = 0x7fffffff;
constexpr std::int64_t kStampMask = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSuffixesPerEntry = std::int64_t{1} << kNumberShift;

// A path as part of a "file:" name, where "?", "#" and "%" have a meaning.
std::string escaped(const std::string& path) {
  std::string name;
  for (const char c : path) {
    name += c == '?' ? "%3f" : c == '#' ? "%23" : c == '%' ? "%25" : std::string(1, c);
  }
  return name;
}

// Whether nothing or a regular file is at `path`.
bool isHarmless(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0 ? S_ISREG(info.st_mode) : errno == ENOENT;
}

}  // namespace

DefaultsStore::DefaultsStore(std::string directory, std::string fileName)
    : directory_(std::move(directory)), fileName_(std::move(fileName)) {}

DefaultsStore::~DefaultsStore() {
  close();
}

StoreStatus DefaultsStore::open(const Loaded& loaded) {
  unreadableCount_ = 0;
  LoadedEntries entries;
  StoreStatus status = prepareFile();
  if (status == StoreStatus::Ok) {
    status = openWritable(entries);
  }
  if (status == StoreStatus::Failed && !path_.empty()) {
    close();
    entries.clear();
    status = openReadOnly(entries);
  }
  if (status != StoreStatus::Ok) {
    close();
  }
  if (status == StoreStatus::Ok || status == StoreStatus::ReadOnly) {
    for (LoadedEntry& entry : entries) {
      loaded(std::move(entry.key), std::move(entry.value));
    }
  }
  return status;
}

StoreStatus DefaultsStore::prepareFile() {
  path_.clear();
  const FileResult made = LinuxFiles("").createDirectories(directory_);
  char* const real = made.ok() ? ::realpath(directory_.c_str(), nullptr) : nullptr;
  if (real == nullptr) {
    failureText_ = made.ok() ? std::generic_category().message(errno) : made.reason;
    return StoreStatus::Failed;
  }
  const std::string path = std::string(real) + "/" + fileName_;
  std::free(real);
  if (!isHarmless(path) || !isHarmless(path + "-wal") || !isHarmless(path + "-shm")) {
    failureText_ = "not a regular file";
    return StoreStatus::Failed;
  }
  path_ = path;
  // Made here and not by the database, which would let the group and others read it; its companions take this mode.
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (fd >= 0) {
    ::close(fd);
  }
  return fd >= 0 || errno == EEXIST ? StoreStatus::Ok : failedWith(errno);
}

StoreStatus DefaultsStore::connect(const std::string& name, int flags) {
  sqlite3* database = nullptr;
  const int code = sqlite3_open_v2(name.c_str(), &database, kOpenFlags | flags, nullptr);
  database_.reset(database);
  if (code != SQLITE_OK) {
    return failed(code);
  }
  sqlite3_busy_timeout(database, kBusyTimeoutMs);
  return StoreStatus::Ok;
}

StoreStatus DefaultsStore::openWritable(LoadedEntries& entries) {
  StoreStatus status = connect(path_, SQLITE_OPEN_READWRITE);
  if (status == StoreStatus::Ok && sqlite3_db_readonly(database_.get(), "main") != 0) {
    return failedWith(EROFS);
  }
  if (status == StoreStatus::Ok) {
    status = execute(kConfigure);
  }
  if (status == StoreStatus::Ok) {
    sqlite3_wal_hook(
        database_.get(),
        [](void* self, sqlite3*, const char*, int frames) {
          static_cast<DefaultsStore*>(self)->journalBytes_ = std::int64_t{frames} * kFrameBytes;
          return SQLITE_OK;
        },
        this);
    status = makeTables();
  }
  if (status == StoreStatus::Ok) {
    status = load(entries);
  }
  if (status == StoreStatus::Ok) {
    status = check();
  }
  return status == StoreStatus::Ok ? prepareStatements() : status;
}

// Damage that reading did not meet, such as overlapping free space, would cost what is written next. Takes some 50 us.
StoreStatus DefaultsStore::check() {
  SqliteStatement rows;
  const StoreStatus status = prepare("PRAGMA quick_check(1)", rows);
  if (status != StoreStatus::Ok) {
    return status;
  }
  const int code = sqlite3_step(rows.get());
  if (code != SQLITE_ROW) {
    return failed(code);
  }
  return columnBytes(rows.get(), 0) == "ok" ? StoreStatus::Ok : failed(SQLITE_CORRUPT);
}

StoreStatus DefaultsStore::openReadOnly(LoadedEntries& entries) {
  const std::string reason = failureText_;
  // Without permission to make the lock file, the journal can only be read where that file is there already.
  for (const char* options : {"?mode=ro", "?mode=ro&immutable=1"}) {
    StoreStatus status = connect("file:" + escaped(path_) + options, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    if (status == StoreStatus::Ok) {
      status = load(entries);
    }
    close();
    if (status == StoreStatus::Ok) {
      failureText_ = reason;
      return StoreStatus::ReadOnly;
    }
    entries.clear();
  }
  failureText_ = reason;
  return StoreStatus::Failed;
}

StoreStatus DefaultsStore::makeTables() {
  SqliteStatement version;
  StoreStatus status = prepare("PRAGMA user_version", version);
  std::int64_t number = 0;
  if (status == StoreStatus::Ok) {
    status = run(version.get(), &number);
  }
  if (status != StoreStatus::Ok || number != 0) {
    return status;
  }
  status = execute(kMakeTables);
  if (status == StoreStatus::Ok) {
    noteCommit();
  }
  return status;
}

StoreStatus DefaultsStore::prepareStatements() {
  struct Source {
    const char* sql;
    SqliteStatement& statement;
  };
  const Source sources[] = {
      {"BEGIN IMMEDIATE", statements_.begin},
      {"COMMIT", statements_.commit},
      {"ROLLBACK", statements_.rollback},
      {"SELECT count(*) FROM sqlite_schema", statements_.hold},
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
    const StoreStatus status = prepare(source.sql, source.statement);
    if (status != StoreStatus::Ok) {
      return status;
    }
  }
  return StoreStatus::Ok;
}

StoreStatus DefaultsStore::load(LoadedEntries& entries) {
  SqliteStatement rows;
  const StoreStatus status = prepare("SELECT key, number, kind, value FROM entry ORDER BY key", rows);
  if (status != StoreStatus::Ok) {
    return status;
  }
  int code = SQLITE_ROW;
  std::optional<std::string> last;
  while ((code = sqlite3_step(rows.get())) == SQLITE_ROW) {
    std::string key(columnBytes(rows.get(), 0));
    // Out of order, a key may not be found again; and pages linked in a circle would be read for ever.
    if (last && key <= *last) {
      return failed(SQLITE_CORRUPT);
    }
    last = key;
    if (std::optional<Value> value = columnValue(rows.get(), 2)) {
      const bool isInParts = columnIsInParts(rows.get(), 2);
      const std::int64_t stamp = isInParts ? sqlite3_column_int64(rows.get(), 3) & kStampMask : -1;
      entries.push_back({sqlite3_column_int64(rows.get(), 1), std::move(key), std::move(*value), stamp, {}});
    } else {
      ++unreadableCount_;
    }
  }
  return code == SQLITE_DONE ? loadSuffixes(entries) : failed(code);
}

StoreStatus DefaultsStore::loadSuffixes(LoadedEntries& entries) {
  SqliteStatement rows;
  const StoreStatus status = prepare("SELECT id, text FROM suffix ORDER BY id", rows);
  if (status != StoreStatus::Ok) {
    return status;
  }
  std::map<std::int64_t, LoadedEntry*> byNumber;
  for (LoadedEntry& entry : entries) {
    byNumber[entry.number] = &entry;
  }
  int code = SQLITE_ROW;
  std::int64_t last = -1;
  while ((code = sqlite3_step(rows.get())) == SQLITE_ROW) {
    const std::int64_t id = sqlite3_column_int64(rows.get(), 0);
    if (id <= last) {
      return failed(SQLITE_CORRUPT);
    }
    last = id;
    const auto entry = byNumber.find(id >> kNumberShift);
    if (entry != byNumber.end() && !addSuffix(*entry->second, columnBytes(rows.get(), 1))) {
      ++unreadableCount_;
    }
  }
  for (LoadedEntry& entry : entries) {
    const std::string* text = entry.value.text();
    if (text != nullptr && !entry.grown.empty()) {
      entry.value = Value(*text + entry.grown);
    }
    if (entry.stamp >= 0) {
      rows_.insert_or_assign(entry.key, Rows{true, entry.stamp, entry.number << kNumberShift, {}});
    }
  }
  return code == SQLITE_DONE ? StoreStatus::Ok : failed(code);
}

// Takes a row that continues the entry's text or is a part of its array. False when it is no such part.
bool DefaultsStore::addSuffix(LoadedEntry& entry, std::string_view text) {
  if (entry.stamp < 0) {
    entry.grown.append(text);
    return true;
  }
  std::optional<Value> part = parsePropertyList(text);
  Array* elements = part ? part->array() : nullptr;
  if (elements == nullptr) {
    return false;
  }
  std::move(elements->begin(), elements->end(), std::back_inserter(*entry.value.array()));
  return true;
}

StoreStatus DefaultsStore::write(const std::vector<StoreChange>& changes) {
  shareJournalIfReleased();
  StoreStatus status = writeOnce(changes);
  if (status == StoreStatus::Busy) {
    // Another process may have written since the journal was held: only a fresh look at it can be written upon.
    shareJournal();
    status = writeOnce(changes);
  }
  if (status == StoreStatus::Ok) {
    noteCommit();
  }
  return status;
}

StoreStatus DefaultsStore::writeOnce(const std::vector<StoreChange>& changes) {
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

bool DefaultsStore::isOneStatement(const StoreChange& change) const {
  const auto known = rows_.find(change.key);
  return known != rows_.end() && (change.kind == StoreChange::Kind::Append ||
                                  (change.kind == StoreChange::Kind::Put && !known->second.hasSuffixes));
}

StoreStatus DefaultsStore::writeTransaction(const std::vector<StoreChange>& changes) {
  StoreStatus status = run(statements_.begin.get());
  for (const StoreChange& change : changes) {
    if (status == StoreStatus::Ok) {
      status = apply(change);
    }
  }
  if (status == StoreStatus::Ok) {
    status = run(statements_.commit.get());
  }
  if (status != StoreStatus::Ok && sqlite3_get_autocommit(database_.get()) == 0) {
    const std::string reason = failureText_;
    run(statements_.rollback.get());
    failureText_ = reason;
  }
  return status;
}

StoreStatus DefaultsStore::apply(const StoreChange& change) {
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

StoreStatus DefaultsStore::put(std::string_view key, const Value& value, const std::string& listText) {
  const bool needsList = listText.empty() && (value.array() != nullptr || value.dictionary() != nullptr);
  const std::string list = needsList ? writePropertyList(value).value_or(std::string()) : std::string();
  const auto known = rows_.find(key);
  if (known != rows_.end() && !known->second.hasSuffixes) {
    bindText(statements_.update.get(), 1, key);
    bindValue(statements_.update.get(), 2, value, needsList ? list : listText);
    const StoreStatus status = run(statements_.update.get());
    // No row is there when another process has removed the key.
    if (status != StoreStatus::Ok || sqlite3_changes(database_.get()) > 0) {
      return status;
    }
  }
  std::uint32_t drawn = 0;
  sqlite3_randomness(sizeof(drawn), &drawn);
  std::int64_t number = drawn & kNumberMask;
  bindText(statements_.put.get(), 1, key);
  bindValue(statements_.put.get(), 2, value, needsList ? list : listText);
  sqlite3_bind_int64(statements_.put.get(), 4, number);
  StoreStatus status = run(statements_.put.get(), &number);
  if (status == StoreStatus::Ok) {
    status = removeSuffixes(number);
  }
  rows_.insert_or_assign(std::string(key), Rows{false, -1, number << kNumberShift, {}});
  return status;
}

StoreStatus DefaultsStore::putParts(const StoreChange& change) {
  std::int64_t stamp = 0;
  sqlite3_randomness(sizeof(stamp), &stamp);
  stamp &= kStampMask;
  std::int64_t number = -1;
  StoreStatus status = putStamp(change, stamp, number);
  if (status == StoreStatus::Ok) {
    const auto behind = static_cast<std::int64_t>(change.partCount);
    status = removeSuffixes(number, change.isWhole ? 0 : behind);
  }
  const std::int64_t first = number << kNumberShift;
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

// Puts the array's row or, for parts, changes the stamp that was left there last; then tells the row's number.
StoreStatus DefaultsStore::putStamp(const StoreChange& change, std::int64_t stamp, std::int64_t& number) {
  if (change.isWhole) {
    std::uint32_t drawn = 0;
    sqlite3_randomness(sizeof(drawn), &drawn);
    number = drawn & kNumberMask;
    bindText(statements_.put.get(), 1, change.key);
    bindParts(statements_.put.get(), 2, stamp);
    sqlite3_bind_int64(statements_.put.get(), 4, number);
    return run(statements_.put.get(), &number);
  }
  const auto known = rows_.find(change.key);
  if (known == rows_.end() || known->second.stamp < 0) {
    return StoreStatus::Stale;
  }
  bindText(statements_.restamp.get(), 1, change.key);
  bindParts(statements_.restamp.get(), 2, stamp);
  sqlite3_bind_int64(statements_.restamp.get(), 4, known->second.stamp);
  const StoreStatus status = run(statements_.restamp.get(), &number);
  return status == StoreStatus::Ok && number < 0 ? StoreStatus::Stale : status;
}

StoreStatus DefaultsStore::remove(std::string_view key) {
  forget(key);
  std::int64_t number = -1;
  bindText(statements_.remove.get(), 1, key);
  const StoreStatus status = run(statements_.remove.get(), &number);
  return status == StoreStatus::Ok && number >= 0 ? removeSuffixes(number) : status;
}

StoreStatus DefaultsStore::removeSuffixes(std::int64_t number, std::int64_t from) {
  const std::int64_t first = number << kNumberShift;
  sqlite3_bind_int64(statements_.removeSuffixes.get(), 1, first + from);
  sqlite3_bind_int64(statements_.removeSuffixes.get(), 2, first + kSuffixesPerEntry - 1);
  return run(statements_.removeSuffixes.get());
}

StoreStatus DefaultsStore::append(std::string_view key, std::string_view suffix) {
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

StoreStatus DefaultsStore::putSuffix(std::int64_t id, std::string_view text) {
  sqlite3_bind_int64(statements_.append.get(), 1, id);
  bindText(statements_.append.get(), 2, text);
  return run(statements_.append.get());
}

StoreStatus DefaultsStore::findRows(std::string_view key) {
  std::int64_t number = -1;
  bindText(statements_.numberOf.get(), 1, key);
  StoreStatus status = run(statements_.numberOf.get(), &number);
  if (status != StoreStatus::Ok || number < 0) {
    return status != StoreStatus::Ok ? status : put(key, Value(""), {});  // Another process removed the key.
  }
  const std::int64_t first = number << kNumberShift;
  std::int64_t last = first - 1;
  sqlite3_bind_int64(statements_.lastSuffix.get(), 1, first);
  sqlite3_bind_int64(statements_.lastSuffix.get(), 2, first + kSuffixesPerEntry - 1);
  status = run(statements_.lastSuffix.get(), &last);
  rows_.insert_or_assign(std::string(key), Rows{true, -1, last + 1, {}});
  return status;
}

void DefaultsStore::forget(std::string_view key) {
  if (const auto known = rows_.find(key); known != rows_.end()) {
    rows_.erase(known);
  }
}

bool DefaultsStore::setAside() {
  if (database_) {
    // What is set aside stays as it was found.
    sqlite3_db_config(database_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  }
  close();
  const std::string aside = path_ + ".corrupt";
  if (path_.empty() || ::rename(path_.c_str(), aside.c_str()) != 0) {
    return false;
  }
  for (const char* companion : {"-wal", "-shm"}) {
    ::unlink((aside + companion).c_str());
    ::rename((path_ + companion).c_str(), (aside + companion).c_str());
  }
  return true;
}

// A statement that is not run to its end keeps the connection's place in the journal. That saves each write two locks,
// and keeps the journal from being started over by a write, which would have to wait for the disk.
void DefaultsStore::shareJournal() {
  releaseJournal();
  holdsJournal_ = sqlite3_step(statements_.hold.get()) == SQLITE_ROW;
}

void DefaultsStore::shareJournalIfReleased() {
  if (!holdsJournal_) {
    shareJournal();
  }
}

void DefaultsStore::releaseJournal() {
  sqlite3_reset(statements_.hold.get());
  holdsJournal_ = false;
}

// The first write into an empty journal would wait for the disk, to keep the header from being newer than left-over
// frames behind it. After truncation there are none.
void DefaultsStore::noteJournalEmptied() {
  journalBytes_ = 0;
  syncsJournalHeader_ = execute("PRAGMA synchronous=OFF") != StoreStatus::Ok;
}

void DefaultsStore::noteCommit() {
  ++commitCount_;
  if (!syncsJournalHeader_) {
    syncsJournalHeader_ = execute("PRAGMA synchronous=NORMAL") == StoreStatus::Ok;
  }
}

void DefaultsStore::close() {
  statements_ = {};
  holdsJournal_ = false;
  rows_.clear();
  if (database_) {
    // Closing may move the journal into the file.
    sqlite3_exec(database_.get(), "PRAGMA synchronous=NORMAL", nullptr, nullptr, nullptr);
  }
  database_.reset();
  journalBytes_ = 0;
  syncsJournalHeader_ = false;
}

StoreStatus DefaultsStore::prepare(const char* sql, SqliteStatement& statement) {
  sqlite3_stmt* prepared = nullptr;
  const int code = sqlite3_prepare_v3(database_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
  statement.reset(prepared);
  return code == SQLITE_OK ? StoreStatus::Ok : failed(code);
}

StoreStatus DefaultsStore::execute(const char* sql) {
  const int code = sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr);
  return code == SQLITE_OK ? StoreStatus::Ok : failed(code);
}

// Runs a statement to its end. The first column of its row, if it has one, goes to `number`.
StoreStatus DefaultsStore::run(sqlite3_stmt* statement, std::int64_t* number) {
  int code = sqlite3_step(statement);
  if (code == SQLITE_ROW && number != nullptr) {
    *number = sqlite3_column_int64(statement, 0);
    code = sqlite3_step(statement);
  }
  const StoreStatus status = code == SQLITE_DONE || code == SQLITE_ROW ? StoreStatus::Ok : failed(code);
  sqlite3_reset(statement);
  return status;
}

StoreStatus DefaultsStore::failed(int code) {
  failureText_ = sqlite3_errstr(code);
  if (code == SQLITE_READONLY) {
    return StoreStatus::Corrupt;  // Asked whether the file may be written, the system said yes: its header forbids it.
  }
  switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
      return StoreStatus::Busy;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    // No statement of ours is wrong in itself: the tables are not those that we made.
    case SQLITE_ERROR:
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH:
      return StoreStatus::Corrupt;
    default:
      return StoreStatus::Failed;
  }
}

StoreStatus DefaultsStore::failedWith(int error) {
  failureText_ = std::generic_category().message(error);
  return StoreStatus::Failed;
}

}  // namespace kesu
