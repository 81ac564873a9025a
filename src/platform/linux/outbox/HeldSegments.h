#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "platform/linux/outbox/SegmentFile.h"

namespace kesu {

/// A segment and what Entry::segment says of it.
struct HeldSegment {
  std::uint32_t id = 0;
  std::shared_ptr<SegmentFile> file;
};

/// The segments that a process holds: its own and those taken over. Guarded by its owner.
class HeldSegments {
 public:
  /// A number that no segment had before. Later ones are greater.
  std::uint32_t newId() { return ++lastId_; }

  std::size_t size() const { return files_.size(); }

  void add(const HeldSegment& segment) { files_[segment.id] = segment.file; }
  void remove(std::uint32_t id) { files_.erase(id); }

  /// Null when there is none of that number any more.
  std::shared_ptr<SegmentFile> find(std::uint32_t id) const {
    const auto found = files_.find(id);
    return found != files_.end() ? found->second : nullptr;
  }

  std::vector<HeldSegment> all() const {
    std::vector<HeldSegment> segments;
    segments.reserve(files_.size());
    for (const auto& [id, file] : files_) {
      segments.push_back({id, file});
    }
    return segments;
  }

  std::set<std::uint64_t> logIds() const {
    std::set<std::uint64_t> ids;
    for (const auto& [id, file] : files_) {
      ids.insert(file->name().logId);
    }
    return ids;
  }

 private:
  std::uint32_t lastId_ = 0;
  std::map<std::uint32_t, std::shared_ptr<SegmentFile>> files_;
};

}  // namespace kesu
