#include "platform/linux/defaults/LinuxUserDefaults.h"

#include <utility>

#include "platform/linux/defaults/StoredValue.h"

namespace kesu {
namespace {

// Writers that go on all the time must not keep a checkpoint busy for ever; the next one makes up for it.
constexpr int kCheckpointPasses = 3;

}  // namespace

LinuxUserDefaults::LinuxUserDefaults(std::string preferencesDirectory, std::string fileName,
                                     std::chrono::milliseconds retryPause)
    : file_(cache_, std::move(preferencesDirectory), std::move(fileName), retryPause) {}

LinuxUserDefaults::~LinuxUserDefaults() {
  if (file_.isInForkedChild()) {
    checkpointer_.abandon();
  }
}

std::optional<Value> LinuxUserDefaults::get(std::string_view key) {
  if (!file_.openOnce()) {
    return std::nullopt;
  }
  std::optional<Value> value = cache_.get(key);
  if (!value && cache_.contains(key)) {  // It is in the file only, or was until another thread read it just now.
    file_.readOnce(key);
    value = cache_.get(key);
  }
  return value;
}

bool LinuxUserDefaults::contains(std::string_view key) {
  return file_.openOnce() && cache_.contains(key);
}

bool LinuxUserDefaults::set(std::string_view key, Value value) {
  if (!file_.openOnce()) {
    return false;
  }
  if (isContainer(value)) {
    file_.readOnce(key);  // To be compared with.
  }
  return cache_.set(key, std::move(value));
}

void LinuxUserDefaults::remove(std::string_view key) {
  if (file_.openOnce()) {
    cache_.remove(key);
  }
}

void LinuxUserDefaults::apply(std::span<const DefaultsChange> changes) {
  if (!file_.openOnce()) {
    return;
  }
  for (const DefaultsChange& change : changes) {
    if (isContainer(change.value)) {
      file_.readOnce(change.key);
    }
  }
  cache_.apply(changes);
}

std::vector<std::string> LinuxUserDefaults::keys() {
  return file_.openOnce() ? cache_.keys() : std::vector<std::string>();
}

bool LinuxUserDefaults::isLoaded() {
  return file_.openOnce() && file_.isLoaded();
}

void LinuxUserDefaults::whenLoaded(std::function<void()> done) {
  if (file_.openOnce()) {
    file_.whenLoaded(std::move(done));
  }
}

bool LinuxUserDefaults::synchronize() {
  if (file_.isInForkedChild()) {
    return false;
  }
  if (!cache_.hasUnsaved()) {
    return true;
  }
  bool wantsCheckpoint = false;
  const bool isWritten = file_.write(wantsCheckpoint);
  if (wantsCheckpoint && askForCheckpoint_) {
    askForCheckpoint_();
  }
  return isWritten;
}

bool LinuxUserDefaults::checkpoint() {
  if (!file_.openOnce()) {
    return false;
  }
  bool isMoved = false;
  {
    const MutexLock lock(checkpointMutex_);
    for (int pass = 0; pass < kCheckpointPasses && !checkpointOnce(isMoved); ++pass) {
    }
  }
  file_.report();
  file_.tell();
  return isMoved;
}

// Returns true when nothing is left to do. The slow parts, which wait for the disk, lock nothing that others need.
bool LinuxUserDefaults::checkpointOnce(bool& isMoved) {
  isMoved = false;
  const auto checkpoint = file_.beginCheckpoint(checkpointer_);
  if (!checkpoint) {
    return true;
  }
  if (checkpoint->isUnchecked && !file_.noteChecked(*checkpoint, checkpointer_.findsDamage(checkpoint->path))) {
    return false;
  }
  isMoved = checkpointer_.moveJournal(checkpoint->path);
  return file_.finishCheckpoint(*checkpoint, isMoved, checkpointer_);
}

}  // namespace kesu
