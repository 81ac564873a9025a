#include "platform/linux/outbox/LogRecovery.h"

#include <algorithm>
#include <set>
#include <utility>

namespace kesu {

void LogRecovery::add(std::uint32_t id, std::shared_ptr<SegmentFile> file) {
  highest_ = std::max(highest_, file->header().firstSequence - 1);
  Log& log = logs_[file->header().logId];
  log.segments.push_back({id, std::move(file)});
}

int LogRecovery::run(const Visit& visit) {
  int result = 0;
  const auto keep = [&result](int error) { result = error != 0 ? error : result; };
  while (!logs_.empty()) {
    const auto next = std::min_element(logs_.begin(), logs_.end(), [](const auto& left, const auto& right) {
      return left.second.sequence() < right.second.sequence();
    });
    Log& log = next->second;
    if (!equals_.empty() && log.sequence() != equals_.front().item.sequence) {
      keep(visitEquals(visit));
    }
    if (log.item) {
      hold(log);
    }
    keep(advance(log));
    if (log.at == log.segments.size()) {
      logs_.erase(next);
    }
  }
  keep(visitEquals(visit));
  return result;
}

int LogRecovery::advance(Log& log) {
  int error = 0;
  if (!log.reader) {
    error = log.segments[log.at].file->readAll(log.bytes);
    if (error != 0) {
      log.segments[log.at].file->pin();
      log.bytes.clear();
    }
    log.reader.emplace(log.bytes);
    log.preamble.clear();  // Each segment begins with the one in force.
  }
  while ((log.item = log.reader->next())) {
    if (log.item->kind == EntryKind::Entry) {
      return error;
    }
    log.preamble = log.item->bytes;
  }
  log.reader.reset();
  ++log.at;
  return error;
}

void LogRecovery::hold(const Log& log) {
  const Segment& segment = log.segments[log.at];
  segment.file->count(log.item->sequence, log.item->isReleased() || log.item->isCopy());
  equals_.push_back({segment, *log.item, log.preamble, std::string(log.item->bytes)});
}

int LogRecovery::visitEquals(const Visit& visit) {
  int result = 0;
  std::set<std::uint64_t> released;
  std::set<std::uint64_t> visited;
  for (const Held& held : equals_) {
    if (held.item.isReleased()) {
      released.insert(held.item.checksum);
    }
  }
  for (const auto& [segment, item, preamble, bytes] : equals_) {
    highest_ = std::max(highest_, item.sequence);
    if (item.isCopy()) {
      continue;
    }
    const bool isFirst = visited.insert(item.checksum).second;
    const bool isReleased = released.contains(item.checksum);
    int error = 0;
    if (!item.isReleased() && (isReleased || !isFirst)) {
      error = isReleased ? segment.file->release(item.offset) : segment.file->markCopy(item.offset);
    }
    if (isFirst) {
      visit({{item.sequence, segment.id, item.offset}, isReleased, preamble, bytes});
    }
    result = error != 0 ? error : result;
  }
  equals_.clear();
  return result;
}

}  // namespace kesu
