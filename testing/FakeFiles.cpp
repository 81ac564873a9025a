#include "testing/FakeFiles.h"

#include <algorithm>
#include <utility>

namespace kesu::testing {
namespace {

std::string parentOf(const std::string& path) {
  return path.substr(0, path.find_last_of('/'));
}

FileResult failure(FileStatus status, const char* reason) {
  return {status, reason};
}

}  // namespace

FakeFiles::Nodes::iterator FakeFiles::find(std::string_view path) {
  return std::find_if(nodes_.begin(), nodes_.end(), [&](const Node& node) { return node.path == path; });
}

bool FakeFiles::makeDirectories(const std::string& path) {
  if (path.empty()) {
    return true;
  }
  if (const auto node = find(path); node != nodes_.end()) {
    return node->kind == Kind::Directory;
  }
  if (!makeDirectories(parentOf(path))) {
    return false;
  }
  nodes_.push_back({path, Kind::Directory, {}});
  return true;
}

FileResult FakeFiles::put(const std::string& path, Kind kind, std::string_view bytes) {
  if (writeStatus_ != FileStatus::Ok) {
    return failure(writeStatus_, "failed by the test");
  }
  if (!makeDirectories(parentOf(path))) {
    return failure(FileStatus::OtherFailure, "Not a directory");
  }
  const auto node = find(path);
  if (node == nodes_.end()) {
    nodes_.push_back({path, kind, std::string(bytes)});
  } else if (node->kind == Kind::Directory) {
    return failure(FileStatus::NotRegular, "Is a directory");
  } else {
    node->kind = kind;
    node->bytes = bytes;
  }
  return {};
}

FileContent FakeFiles::read(const std::string& path, std::size_t limit) {
  const MutexLock lock(mutex_);
  const auto node = find(path);
  if (node == nodes_.end()) {
    return {FileStatus::NotFound, {}};
  }
  ++node->reads;
  if (const FileStatus status = std::exchange(nextReadStatus_, FileStatus::Ok); status != FileStatus::Ok) {
    return {status, {}};
  }
  if (node->kind != Kind::File) {
    return {FileStatus::NotRegular, {}};
  }
  return node->bytes.size() > limit ? FileContent{FileStatus::TooLarge, {}} : FileContent{FileStatus::Ok, node->bytes};
}

FileResult FakeFiles::writeAtomically(const std::string& path, std::string_view bytes) {
  const MutexLock lock(mutex_);
  return put(path, Kind::File, bytes);
}

FileResult FakeFiles::writeNew(const std::string& path, std::string_view bytes) {
  const MutexLock lock(mutex_);
  return find(path) != nodes_.end() ? failure(FileStatus::Exists, "File exists") : put(path, Kind::File, bytes);
}

FileResult FakeFiles::remove(const std::string& path) {
  const MutexLock lock(mutex_);
  const auto node = find(path);
  if (node == nodes_.end()) {
    return failure(FileStatus::NotFound, "No such file or directory");
  }
  if (node->kind == Kind::Directory) {
    return failure(FileStatus::NotRegular, "Is a directory");
  }
  nodes_.erase(node);
  return {};
}

FileResult FakeFiles::createDirectories(const std::string& path) {
  const MutexLock lock(mutex_);
  return makeDirectories(path) ? FileResult{} : failure(FileStatus::OtherFailure, "Not a directory");
}

std::vector<std::pair<DirectoryEntry, FakeFiles::Kind>> FakeFiles::children(const std::string& directory) {
  const MutexLock lock(mutex_);
  std::vector<std::pair<DirectoryEntry, Kind>> found;
  for (const Node& node : nodes_) {
    const std::string name = node.path.substr(node.path.find_last_of('/') + 1);
    if (parentOf(node.path) == directory && name.front() != '.') {
      found.push_back({{node.path, name, node.kind == Kind::File}, node.kind});
    }
  }
  return found;
}

bool FakeFiles::walk(const std::string& directory, const std::function<bool(const DirectoryEntry&)>& visit) {
  for (const auto& [entry, kind] : children(directory)) {
    if (!visit(entry) || (kind == Kind::Directory && !walk(entry.path, visit))) {
      return false;
    }
  }
  return true;
}

void FakeFiles::enumerate(const std::string& directory, const std::function<bool(const DirectoryEntry&)>& visit) {
  walk(directory, visit);
}

class FakeFiles::Lock final : public FileLock {
 public:
  Lock(FakeFiles& files, std::string path) : files_(files), path_(std::move(path)) {}

  ~Lock() override {
    const MutexLock lock(files_.mutex_);
    files_.locked_.erase(path_);
  }

 private:
  FakeFiles& files_;
  const std::string path_;
};

std::unique_ptr<FileLock> FakeFiles::tryLock(const std::string& directory) {
  const MutexLock lock(mutex_);
  return locked_.insert(directory).second ? std::make_unique<Lock>(*this, directory) : nullptr;
}

void FakeFiles::addSpecial(const std::string& path) {
  const MutexLock lock(mutex_);
  put(path, Kind::Special, {});
}

std::vector<std::string> FakeFiles::paths() {
  const MutexLock lock(mutex_);
  std::vector<std::string> found;
  for (const Node& node : nodes_) {
    if (node.kind == Kind::File) {
      found.push_back(node.path);
    }
  }
  return found;
}

FileResult FakeFiles::flush(const std::string& /*directory*/) {
  const MutexLock lock(mutex_);
  return writeStatus_ == FileStatus::Ok ? FileResult{} : failure(writeStatus_, "failed by the test");
}

void FakeFiles::failNextRead(FileStatus status) {
  const MutexLock lock(mutex_);
  nextReadStatus_ = status;
}

void FakeFiles::failWrites(FileStatus status) {
  const MutexLock lock(mutex_);
  writeStatus_ = status;
}

int FakeFiles::readCount(const std::string& path) {
  const MutexLock lock(mutex_);
  const auto node = find(path);
  return node != nodes_.end() ? node->reads : 0;
}

}  // namespace kesu::testing
