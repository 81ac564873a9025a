#include "tools/kesu-dev/commands/WatchCommand.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <thread>
#include <vector>

#include "foundation/Json.h"
#include "tools/kesu-dev/http/HttpFetch.h"
#include "tools/kesu-dev/messages/MessageReport.h"
#include "tools/kesu-dev/records/RecordText.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kDefaultWidth = 120;
constexpr std::size_t kPageSize = 1000;
constexpr std::chrono::seconds kRetryInterval{1};

void print(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

int fail(const std::string& text) {
  std::fprintf(stderr, "kesu-dev: %s\n", text.c_str());
  return 1;
}

int failToReach(const CommandLine& line, const FetchResult& result) {
  const std::string why = result.status != 0 ? "status " + std::to_string(result.status) : result.error;
  return fail("no collector answers at " + line.url + " (" + why + "); kesu-dev serve starts one");
}

bool coloursWanted() {
  return isatty(STDOUT_FILENO) != 0 && std::getenv("NO_COLOR") == nullptr;
}

std::size_t terminalWidth() {
  winsize size{};
  const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : kDefaultWidth;
}

void printEvent(const ServerEvent& event, OutputFormat format, bool colours) {
  if (format == OutputFormat::Json) {
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

// Appends a page of `/good` or `/bad` behind `after`. Returns how many came, or nothing when the fetch failed.
std::optional<std::size_t> fetchPage(const ServerAddress& server, const std::string& path, std::int64_t after,
                                     std::vector<StoredRecord>& records, FetchResult& result) {
  result = fetch(server, path + "?limit=" + std::to_string(kPageSize) + "&after=" + std::to_string(after));
  const std::optional<Value> parsed = result.status == 200 ? parseJson(result.body) : std::nullopt;
  const Dictionary* page = parsed ? parsed->dictionary() : nullptr;
  const Value* list = page != nullptr ? page->find("records") : nullptr;
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

std::size_t widthFor(const CommandLine& line) {
  return line.width != 0 ? line.width : terminalWidth();
}

void printRecords(const std::vector<StoredRecord>& records, const CommandLine& line) {
  if (line.format == OutputFormat::Human) {
    print(recordTable(records, widthFor(line)));
    return;
  }
  for (const StoredRecord& record : records) {
    std::string text;
    appendJson(record, text);
    print(text + "\n");
  }
}

int showFile(const CommandLine& line) {
  std::error_code ignored;
  if (!std::filesystem::exists(line.database, ignored)) {
    return fail("there is no file " + line.database);
  }
  std::string error;
  const std::unique_ptr<RecordStore> store = RecordStore::open(line.database, error);
  if (store == nullptr) {
    return fail("cannot open " + line.database + ": " + error);
  }
  printRecords(store->read(RecordStore::Which::All, 0, SIZE_MAX / 2), line);
  return 0;
}

// Which records a server holds and how far it has counted.
struct Standing {
  std::string records;
  std::int64_t last = 0;
};

std::optional<Standing> standingOf(const ServerAddress& server, FetchResult& result) {
  result = fetch(server, "/health");
  const std::optional<Value> parsed = result.status == 200 ? parseJson(result.body) : std::nullopt;
  const Dictionary* health = parsed ? parsed->dictionary() : nullptr;
  const std::string* records = health != nullptr ? health->findText("records") : nullptr;
  const Value* last = health != nullptr ? health->find("last") : nullptr;
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

}  // namespace

int runTail(const CommandLine& line) {
  const std::optional<ServerAddress> server = parseServerUrl(line.url);
  if (!server) {
    return fail("not a URL of a collector: " + line.url);
  }
  FetchResult result;
  std::optional<Standing> known = standingOf(*server, result);
  if (!known) {
    return failToReach(line, result);
  }
  std::int64_t last = line.fromStart ? 0 : known->last;
  const bool colours = coloursWanted();
  while (true) {
    result = followEvents(*server, last, [&](const ServerEvent& event) {
      last = event.id;
      printEvent(event, line.format, colours);
    });
    if (result.status != 0 && result.status != 200) {
      return failToReach(line, result);
    }
    const Standing now = waitForReturn(*server);
    last = now.records == known->records ? last : 0;
    known = now;
  }
}

int runShow(const CommandLine& line) {
  if (!line.database.empty()) {
    return showFile(line);
  }
  const std::optional<ServerAddress> server = parseServerUrl(line.url);
  if (!server) {
    return fail("not a URL of a collector: " + line.url);
  }
  std::vector<StoredRecord> records;
  FetchResult result;
  if (!fetchAll(*server, records, result)) {
    return failToReach(line, result);
  }
  printRecords(records, line);
  return 0;
}

int runMessages(const CommandLine& line) {
  const std::optional<ServerAddress> server = parseServerUrl(line.url);
  if (!server) {
    return fail("not a URL of a collector: " + line.url);
  }
  const FetchResult result = fetch(*server, "/messages");
  const std::optional<Value> parsed = result.status == 200 ? parseJson(result.body) : std::nullopt;
  if (!parsed || parsed->dictionary() == nullptr) {
    return failToReach(line, result);
  }
  print(line.format == OutputFormat::Json ? result.body + "\n" : messageTable(*parsed->dictionary(), widthFor(line)));
  return 0;
}

}  // namespace kesu::dev
