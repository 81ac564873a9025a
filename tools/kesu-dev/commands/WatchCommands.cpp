#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/Json.h"
#include "tools/kesu-dev/base/CommandLine.h"
#include "tools/kesu-dev/base/Console.h"
#include "tools/kesu-dev/base/Fields.h"
#include "tools/kesu-dev/commands/Commands.h"
#include "tools/kesu-dev/commands/Services.h"
#include "tools/kesu-dev/http/HttpFetch.h"
#include "tools/kesu-dev/messages/MessageReport.h"
#include "tools/kesu-dev/records/RecordText.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kDefaultWidth = 120;  // Where there is no terminal.
constexpr int kNarrowest = 40;
constexpr int kWidest = 1000;
constexpr std::size_t kPageSize = 1000;
constexpr std::chrono::seconds kRetryInterval{1};

struct WatchOptions {
  std::string url = "http://127.0.0.1:" + std::to_string(Services::kDefaultPort);
  std::string database;      // show: read this file instead of asking a collector; empty = ask.
  bool asJson = false;       // One JSON object per line instead of text for people.
  bool fromStart = false;    // tail: begin with the records that have arrived already.
  bool once = false;         // tail: as show.
  std::optional<int> width;  // Columns of a table; nothing = the terminal's.
};

int failToReach(const WatchOptions& options, const FetchResult& result) {
  const std::string why = result.status != 0 ? "status " + std::to_string(result.status) : result.error;
  return fail("no collector answers at " + options.url + " (" + why + "); kesu-dev serve starts one");
}

// Calls `execute` with the address of the collector and returns the exit status.
int withServer(const WatchOptions& options, const std::function<int(const ServerAddress&)>& execute) {
  const std::optional<ServerAddress> server = parseServerUrl(options.url);
  return server ? execute(*server) : fail("not a URL of a collector: " + options.url);
}

// GETs a JSON object; nothing on failure, which `result` then describes.
std::optional<Dictionary> fetchObject(const ServerAddress& server, const std::string& path, FetchResult& result) {
  result = fetch(server, path);
  return result.status == 200 ? parseObject(result.body) : std::nullopt;
}

std::size_t widthFor(const WatchOptions& options) {
  winsize terminal{};
  if (options.width) {
    return static_cast<std::size_t>(*options.width);
  }
  const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &terminal) == 0 && terminal.ws_col > 0;
  return known ? terminal.ws_col : kDefaultWidth;
}

// Appends a page of `/good` or `/bad` behind `after`. Returns its size, or nothing when the fetch failed.
std::optional<std::size_t> fetchPage(const ServerAddress& server, const std::string& path, std::int64_t after,
                                     std::vector<StoredRecord>& records, FetchResult& result) {
  const std::optional<Dictionary> page =
      fetchObject(server, path + "?limit=" + std::to_string(kPageSize) + "&after=" + std::to_string(after), result);
  const Value* list = page ? page->find("records") : nullptr;
  if (list == nullptr || list->array() == nullptr) {
    return std::nullopt;
  }
  for (const Value& value : *list->array()) {
    if (std::optional<StoredRecord> record = storedRecordFromJson(value)) {
      records.push_back(std::move(*record));
    }
  }
  return list->array()->size();
}

bool fetchAll(const ServerAddress& server, std::vector<StoredRecord>& records, FetchResult& result) {
  for (const char* path : {"/good", "/bad"}) {
    std::optional<std::size_t> count = kPageSize;
    for (std::int64_t after = 0; count == kPageSize; after = records.empty() ? 0 : records.back().id) {
      count = fetchPage(server, path, after, records, result);
      if (!count) {
        return false;
      }
    }
  }
  std::sort(records.begin(), records.end(),
            [](const StoredRecord& left, const StoredRecord& right) { return left.id < right.id; });
  return true;
}

int printRecords(const std::vector<StoredRecord>& records, const WatchOptions& options) {
  if (!options.asJson) {
    print(recordTable(records, widthFor(options)));
    return 0;
  }
  for (const StoredRecord& record : records) {
    std::string text;
    appendJson(record, text);
    print(text + "\n");
  }
  return 0;
}

int showFile(const WatchOptions& options) {
  std::error_code ignored;
  // Opening would make the file.
  if (!std::filesystem::exists(options.database, ignored)) {
    return fail("there is no file " + options.database);
  }
  std::string error;
  const std::unique_ptr<RecordStore> store = RecordStore::open(options.database, error);
  if (store == nullptr) {
    return fail("cannot open " + options.database + ": " + error);
  }
  return printRecords(store->read(RecordStore::Which::All, 0, SIZE_MAX / 2), options);
}

int show(const WatchOptions& options) {
  if (!options.database.empty()) {
    return showFile(options);
  }
  return withServer(options, [&](const ServerAddress& server) {
    std::vector<StoredRecord> records;
    FetchResult result;
    return fetchAll(server, records, result) ? printRecords(records, options) : failToReach(options, result);
  });
}

int messages(const WatchOptions& options) {
  return withServer(options, [&](const ServerAddress& server) {
    FetchResult result;
    const std::optional<Dictionary> report = fetchObject(server, "/messages", result);
    if (!report) {
      return failToReach(options, result);
    }
    print(options.asJson ? result.body + "\n" : messageTable(*report, widthFor(options)));
    return 0;
  });
}

void printEvent(const ServerEvent& event, bool asJson, bool colours) {
  if (asJson) {
    print(event.name == "record" ? event.data + "\n" : "{\"" + event.name + "\":true}\n");
    return;
  }
  if (event.name == "reset") {
    print("-- records forgotten --\n");
    return;
  }
  const std::optional<Value> parsed = parseJson(event.data);
  const std::optional<StoredRecord> record = parsed ? storedRecordFromJson(*parsed) : std::nullopt;
  print(record ? recordLine(*record, colours) + "\n" : "#" + std::to_string(event.id) + " cannot be read\n");
}

// Which database a collector has, and its last record.
struct Standing {
  std::string records;
  std::int64_t last = 0;
};

std::optional<Standing> standingOf(const ServerAddress& server, FetchResult& result) {
  const std::optional<Dictionary> health = fetchObject(server, "/health", result);
  const std::string* records = health ? health->findText("records") : nullptr;
  const Value* last = health ? health->find("last") : nullptr;
  return records != nullptr && last != nullptr ? std::optional(Standing{*records, last->integerValue()}) : std::nullopt;
}

Standing waitForReturn(const ServerAddress& server) {
  FetchResult ignored;
  std::optional<Standing> standing = standingOf(server, ignored);
  if (!standing) {
    std::fprintf(stderr, "-- the collector has gone; waiting for it to come back --\n");
  }
  while (!standing) {
    std::this_thread::sleep_for(kRetryInterval);
    standing = standingOf(server, ignored);
  }
  return *standing;
}

int tail(const WatchOptions& options, const ServerAddress& server) {
  FetchResult result;
  std::optional<Standing> known = standingOf(server, result);
  if (!known) {
    return failToReach(options, result);
  }
  std::int64_t last = options.fromStart ? 0 : known->last;
  const bool colours = isatty(STDOUT_FILENO) != 0 && std::getenv("NO_COLOR") == nullptr;
  while (true) {
    result = followEvents(server, last, [&](const ServerEvent& event) {
      last = event.id;
      printEvent(event, options.asJson, colours);
    });
    if (result.status != 0 && result.status != 200) {
      return failToReach(options, result);
    }
    // Another database counts its records anew: none of them has been printed.
    const Standing now = waitForReturn(server);
    last = now.records == known->records ? last : 0;
    known = now;
  }
}

void addSourceOptions(Command& command, WatchOptions& options) {
  command.option("--url", "URL", "the collector (default: " + options.url + ")", options.url);
  addFormatOption(command, "one JSON object per line", options.asJson);
}

void addWidthOption(Command& command, WatchOptions& options) {
  command.number("--width", kNarrowest, kWidest, "columns of the table (default: those of the terminal, else 120)",
                 options.width);
}

void addTailCommand(Program& program) {
  const auto options = std::make_shared<WatchOptions>();
  Command command = program.command("tail", "print a line for each record as it arrives at a running collector", [=] {
    return options->once ? show(*options)
                         : withServer(*options, [&](const ServerAddress& server) { return tail(*options, server); });
  });
  addSourceOptions(command, *options);
  command.flag("--all", "begin with the records that have arrived already", options->fromStart);
  command.flag("--once", "as kesu-dev show", options->once);
}

void addShowCommand(Program& program) {
  const auto options = std::make_shared<WatchOptions>();
  Command command = program.command("show", "print a table of all records so far", [=] { return show(*options); });
  addSourceOptions(command, *options);
  addWidthOption(command, *options);
  command.option("--db", "FILE", "read this file instead of asking a collector", options->database);
}

void addMessagesCommand(Program& program) {
  const auto options = std::make_shared<WatchOptions>();
  Command command = program.command(
      "messages", "print a table of the messages: how often each went out, its receipts, its button presses",
      [=] { return messages(*options); });
  addSourceOptions(command, *options);
  addWidthOption(command, *options);
}

}  // namespace

void addWatchCommands(Program& program) {
  addTailCommand(program);
  addShowCommand(program);
  addMessagesCommand(program);
}

}  // namespace kesu::dev
