#include "tools/kesu-dev/http/EventStream.h"

#include <chrono>

#include "tools/kesu-dev/base/Text.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kRecordsAtOnce = 200;
constexpr std::chrono::milliseconds kLookInterval{250};
constexpr std::chrono::milliseconds kPingInterval{15'000};

// The value of a line of that field, or nothing. One blank after the colon does not count.
std::optional<std::string_view> fieldOf(std::string_view line, std::string_view field) {
  if (!line.starts_with(field) || !line.substr(field.size()).starts_with(':')) {
    return std::nullopt;
  }
  line.remove_prefix(field.size() + 1);
  return line.starts_with(' ') ? line.substr(1) : line;
}

std::string recordEvents(RecordStore& store, std::int64_t& last) {
  std::string text;
  for (const StoredRecord& record : store.read(RecordStore::Which::All, last, kRecordsAtOnce)) {
    ServerEvent event{record.id, "record", {}};
    appendJson(record, event.data);
    text += eventText(event);
    last = record.id;
  }
  return text;
}

}  // namespace

std::string eventText(const ServerEvent& event) {
  return "id: " + std::to_string(event.id) + "\nevent: " + event.name + "\ndata: " + event.data + "\n\n";
}

void EventParser::feed(std::string_view piece, const std::function<void(const ServerEvent&)>& consume) {
  rest_ += piece;
  std::size_t begin = 0;
  for (std::size_t end = rest_.find('\n'); end != std::string::npos; end = rest_.find('\n', begin)) {
    const std::string_view line = std::string_view(rest_).substr(begin, end - begin);
    begin = end + 1;
    readLine(line);
    if (line.empty() && !event_.name.empty()) {
      consume(event_);
      event_ = ServerEvent();
    }
  }
  rest_.erase(0, begin);
}

void EventParser::readLine(std::string_view line) {
  if (const auto id = fieldOf(line, "id")) {
    event_.id = parseDecimal(*id).value_or(0);
  } else if (const auto name = fieldOf(line, "event")) {
    event_.name = *name;
  } else if (const auto data = fieldOf(line, "data")) {
    event_.data += *data;
  }
}

std::optional<std::int64_t> resumePoint(std::string_view lastEventId, std::optional<std::string_view> after) {
  const std::optional<std::int64_t> resumed = parseDecimal(lastEventId);
  return resumed || !after ? resumed : parseDecimal(*after);
}

void followRecords(RecordStore& store, std::optional<std::int64_t> after,
                   const std::function<bool(std::string_view)>& write, const std::function<bool()>& isGone) {
  RecordStore::News known = store.news();
  std::int64_t last = after.value_or(known.lastId);
  // Someone who followed an earlier server has seen ids that this one has not reached yet.
  last = last > known.lastId ? 0 : last;
  auto lastWrite = std::chrono::steady_clock::now();
  std::string text = ": following\n\n";
  while (text.empty() || write(text)) {
    const auto now = std::chrono::steady_clock::now();
    lastWrite = text.empty() ? lastWrite : now;
    text = recordEvents(store, last);
    if (!text.empty()) {
      continue;
    }
    const RecordStore::News news = store.waitForNews({last, known.resets}, kLookInterval);
    if (isGone()) {
      return;
    }
    if (news.resets != known.resets) {
      text = eventText({news.lastId, "reset", "{}"});
    } else if (now - lastWrite > kPingInterval) {
      text = ": still here\n\n";
    }
    known = news;
  }
}

}  // namespace kesu::dev
