#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <utility>
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

  void remove(std::uint32_t id) {
    files_.erase(id);
    std::erase_if(moved_, [id](const auto& move) { return move.second.first == id; });
  }

  /// Removes a segment whose entries were moved: noteMove() has said where to.
  void removeMoved(std::uint32_t id) { files_.erase(id); }

  /// Notes that who asks for the first entry means the second one.
  void noteMove(const AppendLog::Entry& from, const AppendLog::Entry& to) {
    moved_[{from.segment, from.offset}] = {to.segment, to.offset};
  }

  /// Where an entry lies now. Null when its segment is not held any more.
  std::pair<std::shared_ptr<SegmentFile>, std::uint32_t> find(const AppendLog::Entry& entry) const {
    Place place{entry.segment, entry.offset};
    for (auto move = moved_.find(place); move != moved_.end(); move = moved_.find(place)) {
      place = move->second;
    }
    const auto found = files_.find(place.first);
    return {found != files_.end() ? found->second : nullptr, place.second};
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
  using Place = std::pair<std::uint32_t, std::uint32_t>;  // Segment and offset.

  std::uint32_t lastId_ = 0;
  std::map<std::uint32_t, std::shared_ptr<SegmentFile>> files_;
  std::map<Place, Place> moved_;
};

}  // namespace kesu
