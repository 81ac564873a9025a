#include "platform/linux/outbox/LogRecovery.h"

#include <algorithm>
#include <utility>

namespace kesu {

void LogRecovery::add(std::uint32_t id, std::shared_ptr<SegmentFile> file, const SegmentHeader& header) {
  logs_[header.logId].segments.push_back({id, std::move(file), header.firstSequence});
  highest_ = std::max(highest_, header.firstSequence - 1);
}

int LogRecovery::run(const Visit& visit) {
  int result = 0;
  while (!logs_.empty()) {
    const auto next = std::min_element(logs_.begin(), logs_.end(), [](const auto& left, const auto& right) {
      return left.second.sequence() < right.second.sequence();
    });
    Log& log = next->second;
    int error = log.item ? visitItem(log, visit) : 0;
    result = error != 0 ? error : result;
    error = advance(log);
    result = error != 0 ? error : result;
    if (log.at == log.segments.size()) {
      logs_.erase(next);
    }
  }
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

bool LogRecovery::isCopy(const SegmentReader::Item& item) {
  if (item.sequence != latest_) {
    latest_ = item.sequence;
    latestWaiting_.clear();
  }
  if (item.isReleased) {
    return false;
  }
  const bool isKnown = std::find(latestWaiting_.begin(), latestWaiting_.end(), item.checksum) != latestWaiting_.end();
  latestWaiting_.push_back(item.checksum);
  return isKnown;
}

int LogRecovery::visitItem(const Log& log, const Visit& visit) {
  const SegmentReader::Item& item = *log.item;
  const Segment& segment = log.segments[log.at];
  highest_ = std::max(highest_, item.sequence);
  segment.file->count(item.sequence, item.isReleased);
  if (isCopy(item)) {
    return segment.file->release(item.offset);
  }
  visit({{item.sequence, segment.id, item.offset}, item.isReleased, log.preamble, item.bytes});
  return 0;
}

}  // namespace kesu
