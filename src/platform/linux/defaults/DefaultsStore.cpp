#include "platform/linux/defaults/DefaultsStore.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "platform/linux/defaults/DefaultsDamage.h"
#include "platform/linux/defaults/DefaultsSchema.h"
#include "platform/linux/defaults/StoredValue.h"
#include "platform/linux/files/LinuxFiles.h"

namespace kesu {
namespace {

constexpr int kPageBytes = 1024;
constexpr int kFrameBytes = kPageBytes + 24;

// Small pages, because every synchronize() writes at least one of them whole. Checkpoints run on another connection.
constexpr char kConfigure[] =
    "PRAGMA synchronous=OFF; PRAGMA page_size=1024; PRAGMA journal_mode=WAL; PRAGMA wal_autocheckpoint=0;"
    "PRAGMA temp_store=MEMORY; PRAGMA secure_delete=OFF; PRAGMA trusted_schema=OFF; PRAGMA cell_size_check=ON;"
    "PRAGMA cache_size=-512";

constexpr const char* kWithoutJournal = "?mode=ro&immutable=1";

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

// Whether there is nothing in a journal at `path`.
bool isEmpty(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0 ? info.st_size == 0 : errno == ENOENT;
}

}  // namespace

DefaultsStore::DefaultsStore(std::string directory, std::string fileName)
    : directory_(std::move(directory)), fileName_(std::move(fileName)) {}

DefaultsStore::~DefaultsStore() {
  close();
}

StoreStatus DefaultsStore::open(const Loaded& loaded) {
  unreadableCount_ = 0;
  Entries entries;
  StoreStatus status = prepareFile();
  if (status == StoreStatus::Ok) {
    status = judged(openWritable(entries));
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
    for (StoredEntry& entry : entries) {
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
    connection_.setFailureText(made.ok() ? std::generic_category().message(errno) : made.reason);
    return StoreStatus::Failed;
  }
  const std::string path = std::string(real) + "/" + fileName_;
  std::free(real);
  if (!isHarmless(path) || !isHarmless(path + "-wal") || !isHarmless(path + "-shm")) {
    connection_.setFailureText("not a regular file");
    return StoreStatus::Failed;
  }
  path_ = path;
  struct stat home {};
  if (::stat(directory_.c_str(), &home) != 0) {
    return connection_.failedWith(errno);
  }
  home_ = {home.st_dev, home.st_ino};
  // Made here and not by the database, which would let the group and others read it; its companions take this mode.
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (fd >= 0) {
    ::close(fd);
  }
  return fd >= 0 || errno == EEXIST ? StoreStatus::Ok : connection_.failedWith(errno);
}

StoreStatus DefaultsStore::openWritable(Entries& entries) {
  StoreStatus status = connection_.open(path_, SQLITE_OPEN_READWRITE);
  if (status == StoreStatus::Ok && sqlite3_db_readonly(connection_.handle(), "main") != 0) {
    return connection_.failedWith(EROFS);
  }
  for (const auto step : {&DefaultsStore::configure, &DefaultsStore::makeTables, &DefaultsStore::checkIfSmall}) {
    if (status == StoreStatus::Ok) {
      status = (this->*step)();
    }
  }
  if (status == StoreStatus::Ok) {
    status = DefaultsReader(connection_).readAll(entries, unreadableCount_);
  }
  if (status == StoreStatus::Ok) {
    status = writer_.prepare();
  }
  if (status == StoreStatus::Ok) {
    status = connection_.prepare("SELECT count(*) FROM sqlite_schema", hold_);
  }
  if (status == StoreStatus::Ok) {
    shareJournal();  // From now on no other process can remove values that were not read yet.
  }
  return status;
}

StoreStatus DefaultsStore::configure() {
  const StoreStatus status = connection_.execute(kConfigure);
  if (status == StoreStatus::Ok) {
    sqlite3_wal_hook(
        connection_.handle(),
        [](void* self, sqlite3*, const char*, int frames) {
          static_cast<DefaultsStore*>(self)->journalBytes_ = std::int64_t{frames} * kFrameBytes;
          return SQLITE_OK;
        },
        this);
  }
  return status;
}

// Damage that reading does not meet, such as overlapping free space, would cost what is written next. Takes some 50 us
// for a usual file, and as long as reading it for a large one.
StoreStatus DefaultsStore::checkIfSmall() {
  std::int64_t pages = 0;
  const StoreStatus status = ask("PRAGMA page_count", pages);
  isUnchecked_ = pages * kPageBytes > kCheckedByOpenBytes;
  if (status != StoreStatus::Ok || isUnchecked_) {
    return status;
  }
  SqliteStatement rows;
  const StoreStatus prepared = connection_.prepare("PRAGMA quick_check(1)", rows);
  if (prepared != StoreStatus::Ok) {
    return prepared;
  }
  const int code = sqlite3_step(rows.get());
  if (code != SQLITE_ROW) {
    return connection_.failed(code);
  }
  return columnBytes(rows.get(), 0) == "ok" ? StoreStatus::Ok : connection_.failed(SQLITE_CORRUPT);
}

StoreStatus DefaultsStore::noteChecked(bool isDamaged) {
  isUnchecked_ = false;
  return isDamaged ? judged(connection_.failed(SQLITE_CORRUPT)) : StoreStatus::Ok;
}

bool DefaultsStore::isElsewhere() const {
  struct stat home {};
  return ::stat(directory_.c_str(), &home) == 0 && home_ != FileIdentity{home.st_dev, home.st_ino};
}

// To set a healthy store aside costs an installation its identity. Hence no error alone is enough.
StoreStatus DefaultsStore::judged(StoreStatus status) {
  if (status != StoreStatus::Suspect) {
    return status;
  }
  return isProvenDamaged(path_) ? StoreStatus::Corrupt : StoreStatus::Failed;
}

StoreStatus DefaultsStore::openReadOnly(Entries& entries) {
  const std::string reason = failureText();
  // Without permission to make the lock file, the journal can only be read where that file is there already.
  for (const char* options : {"?mode=ro", kWithoutJournal}) {
    if (options == kWithoutJournal && !isEmpty(path_ + "-wal")) {
      break;  // Without it the file may look like that of a new installation.
    }
    StoreStatus status = connection_.open("file:" + escaped(path_) + options, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    if (status == StoreStatus::Ok) {
      status = readAllWhole(entries);
    }
    close();
    if (status == StoreStatus::Ok) {
      connection_.setFailureText(reason);
      return StoreStatus::ReadOnly;
    }
    entries.clear();
    unreadableCount_ = 0;
  }
  connection_.setFailureText(reason);
  return StoreStatus::Failed;
}

StoreStatus DefaultsStore::readAllWhole(Entries& entries) {
  StoreStatus status = DefaultsReader(connection_).readAll(entries, unreadableCount_);
  for (StoredEntry& entry : entries) {
    if (status == StoreStatus::Ok && !entry.value) {
      status = DefaultsReader(connection_).readEntry(entry);
      unreadableCount_ += entry.unreadableCount;
    }
  }
  std::erase_if(entries, [](const StoredEntry& entry) { return !entry.value; });
  return status;
}

StoreStatus DefaultsStore::makeTables() {
  std::int64_t version = 0;
  StoreStatus status = ask("PRAGMA user_version", version);
  if (status != StoreStatus::Ok || version != 0) {
    return status;
  }
  std::int64_t others = 0;
  status = ask(kCountOtherTables, others);
  if (status == StoreStatus::Ok) {
    status = others == 0 ? connection_.execute(kMakeDefaultsTables) : connection_.failed(SQLITE_NOTADB);
  }
  if (status == StoreStatus::Ok) {
    noteCommit();
  }
  return status;
}

StoreStatus DefaultsStore::ask(const char* sql, std::int64_t& answer) {
  SqliteStatement statement;
  const StoreStatus status = connection_.prepare(sql, statement);
  return status == StoreStatus::Ok ? connection_.run(statement.get(), &answer) : status;
}

StoreStatus DefaultsStore::read(std::string_view key, std::optional<Value>& value) {
  shareJournalIfReleased();
  StoredEntry entry;
  entry.key = key;
  const StoreStatus status = DefaultsReader(connection_).readEntry(entry);
  if (status != StoreStatus::Ok) {
    return judged(status);
  }
  unreadableCount_ += entry.unreadableCount;
  if (entry.stamp >= 0) {
    writer_.knowParts(entry.key, entry.number, entry.stamp);
  }
  value = std::move(entry.value);
  return StoreStatus::Ok;
}

StoreStatus DefaultsStore::write(const std::vector<StoreChange>& changes) {
  shareJournalIfReleased();
  StoreStatus status = writer_.write(changes);
  if (status == StoreStatus::Busy) {
    // Another process may have written since this one shared the journal: SQLite writes only upon its latest state.
    shareJournal();
    status = writer_.write(changes);
  }
  if (status == StoreStatus::Ok) {
    noteCommit();
  }
  return judged(status);
}

bool DefaultsStore::setAside() {
  if (connection_.isOpen()) {
    // What is set aside stays as it was found.
    sqlite3_db_config(connection_.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
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
  holdsJournal_ = sqlite3_step(hold_.get()) == SQLITE_ROW;
}

void DefaultsStore::shareJournalIfReleased() {
  if (!holdsJournal_) {
    shareJournal();
  }
}

void DefaultsStore::releaseJournal() {
  sqlite3_reset(hold_.get());
  holdsJournal_ = false;
}

// The first write into an empty journal would wait for the disk, to keep the header from being newer than left-over
// frames behind it. After truncation there are none.
void DefaultsStore::noteJournalEmptied() {
  journalBytes_ = 0;
  syncsJournalHeader_ = connection_.execute("PRAGMA synchronous=OFF") != StoreStatus::Ok;
}

void DefaultsStore::noteCommit() {
  ++commitCount_;
  if (!syncsJournalHeader_) {
    syncsJournalHeader_ = connection_.execute("PRAGMA synchronous=NORMAL") == StoreStatus::Ok;
  }
}

void DefaultsStore::close() {
  hold_.reset();
  writer_.reset();
  holdsJournal_ = false;
  if (connection_.isOpen()) {
    // Closing may move the journal into the file.
    sqlite3_exec(connection_.handle(), "PRAGMA synchronous=NORMAL", nullptr, nullptr, nullptr);
  }
  connection_.close();
  journalBytes_ = 0;
  syncsJournalHeader_ = false;
  isUnchecked_ = false;
}

}  // namespace kesu
