#include "tools/kesu-dev/records/RecordStore.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "foundation/Json.h"
#include "tools/kesu-dev/base/Fields.h"
#include "tools/kesu-dev/base/Text.h"
#include "tools/kesu-dev/records/KeyTable.h"

namespace kesu::dev {
namespace {

// Changes with the schema, so that a file of another version is refused instead of misread.
constexpr std::int64_t kSchemaVersion = 1;

// AUTOINCREMENT: an id is never used twice, so a follower that reconnects after a reset misses nothing.
constexpr const char* kSchema = R"(
  CREATE TABLE records (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    arrived_ms INTEGER NOT NULL,
    path TEXT NOT NULL,
    destination TEXT NOT NULL,
    headers TEXT NOT NULL,
    body TEXT NOT NULL,
    body_is_object INTEGER NOT NULL,
    msg_id TEXT,
    reasons TEXT NOT NULL,
    good INTEGER NOT NULL,
    duplicate_of INTEGER NOT NULL,
    was_stored INTEGER NOT NULL);
  CREATE TABLE identity AS SELECT lower(hex(randomblob(8))) AS id;
  CREATE INDEX records_by_msg_id ON records (msg_id, id) WHERE msg_id IS NOT NULL;
  CREATE INDEX bad_records ON records (id) WHERE good = 0;
  PRAGMA user_version = 1;
)";

constexpr std::string_view kInsert =
    "INSERT INTO records (arrived_ms, path, destination, headers, body, body_is_object, msg_id, reasons, good, "
    "duplicate_of, was_stored) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11)";
constexpr std::string_view kFindMessageId = "SELECT id FROM records WHERE msg_id = ?1 ORDER BY id LIMIT 1";
constexpr std::string_view kSelect =
    "SELECT id, arrived_ms, path, destination, headers, body, body_is_object, msg_id, reasons, duplicate_of, "
    "was_stored FROM records WHERE id > ?1 ";

std::int64_t schemaVersion(Database& database) {
  Statement query = database.prepare("PRAGMA user_version");
  return query.nextRow() ? query.integer(0) : 0;
}

// No fsync anywhere: written bytes belong to the kernel and survive this program, and a developer's log of records is
// not worth waiting for the disk 5,000 times per second.
bool prepareSchema(Database& database, std::string& error) {
  const bool ready = database.execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = OFF") &&
                     (schemaVersion(database) != 0 || database.execute(kSchema));
  if (!ready) {
    error = database.lastError();
  } else if (schemaVersion(database) != kSchemaVersion) {
    error = "it was written by another version of kesu-dev";
  }
  return error.empty();
}

// A column holds the reasons as a JSON list.
std::string packed(const std::vector<std::string>& reasons) {
  std::string text;
  writeJson(Value(listOf(reasons)), text);
  return text;
}

std::vector<std::string> unpacked(const std::string& reasons) {
  const std::optional<Value> list = parseJson(reasons);
  return list && list->array() != nullptr ? textsOf(*list->array()) : std::vector<std::string>();
}

StoredRecord recordFromRow(const Statement& row) {
  StoredRecord record;
  record.id = row.integer(0);
  record.arrivedMs = row.integer(1);
  record.path = row.text(2);
  record.destination = row.text(3);
  record.headers = row.text(4);
  record.body = row.text(5);
  record.bodyIsObject = row.integer(6) != 0;
  record.messageId = row.text(7);
  record.reasons = unpacked(row.text(8));
  record.duplicateOf = row.integer(9);
  record.wasStored = row.integer(10) != 0;
  return record;
}

std::string selectFor(RecordStore::Which which) {
  std::string sql(kSelect);
  switch (which) {
    case RecordStore::Which::All:
      break;
    case RecordStore::Which::Good:
      sql += "AND good = 1 ";
      break;
    case RecordStore::Which::Bad:
      sql += "AND good = 0 ";
      break;
    case RecordStore::Which::Messages:
      sql += "AND destination = 'n' ";
      break;
  }
  return sql + "ORDER BY id LIMIT ?2";
}

Dictionary describe(const Counts& counts) {
  return {{"total", counts.total()},
          {"good", counts.good},
          {"bad", counts.bad},
          {"duplicates", counts.duplicates},
          {"wasStored", counts.wasStored}};
}

}  // namespace

Counts sum(const CountsByDestination& counts) {
  Counts all;
  for (const auto& [destination, one] : counts) {
    all.good += one.good;
    all.bad += one.bad;
    all.duplicates += one.duplicates;
    all.wasStored += one.wasStored;
  }
  return all;
}

Dictionary describeCounts(const CountsByDestination& counts) {
  Dictionary destinations;
  for (const auto& [destination, one] : counts) {
    Dictionary row = describe(one);
    const DestinationInfo* info = findDestination(destination);
    row.set("name", info != nullptr ? info->name : "unknown");
    destinations.set(validUtf8(destination), std::move(row));
  }
  Dictionary result = describe(sum(counts));
  result.set("destinations", std::move(destinations));
  return result;
}

std::unique_ptr<RecordStore> RecordStore::open(const std::string& file, std::string& error) {
  error.clear();
  std::unique_ptr<Database> database = Database::open(file, error);
  if (database == nullptr || !prepareSchema(*database, error)) {
    return nullptr;
  }
  return std::make_unique<RecordStore>(std::move(database));
}

RecordStore::RecordStore(std::unique_ptr<Database> database)
    : database_(std::move(database)),
      insert_(database_->prepare(kInsert)),
      findMessageId_(database_->prepare(kFindMessageId)) {
  const MutexLock lock(mutex_);
  load();
}

std::optional<StoredRecord> RecordStore::add(StoredRecord record) {
  const MutexLock lock(mutex_);
  record.duplicateOf = firstWithMessageId(record.messageId);
  if (!insert(record)) {
    return std::nullopt;
  }
  record.id = database_->lastInsertedId();
  count(record);
  news_.lastId = record.id;
  changed_.notify_all();
  return record;
}

std::vector<StoredRecord> RecordStore::read(Which which, std::int64_t after, std::size_t limit) {
  const MutexLock lock(mutex_);
  Statement query = database_->prepare(selectFor(which));
  query.bind(1, after).bind(2, static_cast<std::int64_t>(limit));
  std::vector<StoredRecord> records;
  while (query.nextRow()) {
    records.push_back(recordFromRow(query));
  }
  return records;
}

CountsByDestination RecordStore::counts() const {
  const MutexLock lock(mutex_);
  return counts_;
}

std::string RecordStore::identity() const {
  const MutexLock lock(mutex_);
  return identity_;
}

RecordStore::News RecordStore::news() const {
  const MutexLock lock(mutex_);
  return news_;
}

RecordStore::News RecordStore::waitForNews(const News& known, std::chrono::milliseconds patience) const {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  const MutexLock lock(mutex_);
  const std::int64_t interruptions = interruptions_;
  while (news_.lastId == known.lastId && news_.resets == known.resets && interruptions == interruptions_ &&
         changed_.wait_until(mutex_, deadline) == std::cv_status::no_timeout) {
  }
  return news_;
}

void RecordStore::interrupt() {
  const MutexLock lock(mutex_);
  ++interruptions_;
  changed_.notify_all();
}

bool RecordStore::reset() {
  const MutexLock lock(mutex_);
  if (!database_->execute("DELETE FROM records")) {
    return false;
  }
  counts_.clear();
  ++news_.resets;
  changed_.notify_all();
  return true;
}

std::int64_t RecordStore::firstWithMessageId(const std::string& messageId) {
  if (messageId.empty()) {
    return 0;
  }
  findMessageId_.bind(1, messageId);
  const std::int64_t id = findMessageId_.nextRow() ? findMessageId_.integer(0) : 0;
  findMessageId_.reset();
  return id;
}

bool RecordStore::insert(const StoredRecord& record) {
  const std::string reasons = packed(record.reasons);
  insert_.bind(1, record.arrivedMs)
      .bind(2, record.path)
      .bind(3, record.destination)
      .bind(4, record.headers)
      .bind(5, record.body)
      .bind(6, std::int64_t{record.bodyIsObject})
      .bind(8, reasons)
      .bind(9, std::int64_t{record.good()})
      .bind(10, record.duplicateOf)
      .bind(11, std::int64_t{record.wasStored});
  if (record.messageId.empty()) {
    insert_.bindNull(7);
  } else {
    insert_.bind(7, record.messageId);
  }
  return insert_.run();
}

void RecordStore::count(const StoredRecord& record) {
  Counts& counts = counts_[record.destination];
  ++(record.good() ? counts.good : counts.bad);
  counts.duplicates += record.duplicateOf != 0 ? 1 : 0;
  counts.wasStored += record.wasStored ? 1 : 0;
}

void RecordStore::load() {
  Statement rows = database_->prepare(
      "SELECT destination, SUM(good), SUM(1 - good), SUM(duplicate_of > 0), SUM(was_stored) FROM records GROUP BY 1");
  while (rows.nextRow()) {
    counts_[rows.text(0)] = {rows.integer(1), rows.integer(2), rows.integer(3), rows.integer(4)};
  }
  Statement last = database_->prepare("SELECT seq FROM sqlite_sequence WHERE name = 'records'");
  news_.lastId = last.nextRow() ? last.integer(0) : 0;
  Statement identity = database_->prepare("SELECT id FROM identity");
  identity_ = identity.nextRow() ? identity.text(0) : "";
}

}  // namespace kesu::dev
