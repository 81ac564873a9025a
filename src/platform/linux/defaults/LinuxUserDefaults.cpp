#include "platform/linux/defaults/LinuxUserDefaults.h"

#include <utility>

#include "platform/linux/defaults/StoredValue.h"

namespace kesu {
namespace {

// Writers that go on all the time must not keep a checkpoint busy for ever; the next one makes up for it.
constexpr int kCheckpointPasses = 3;

}  // namespace

LinuxUserDefaults::LinuxUserDefaults(std::string preferencesDirectory, std::string fileName)
    : file_(cache_, std::move(preferencesDirectory), std::move(fileName)) {}

LinuxUserDefaults::~LinuxUserDefaults() {
  if (file_.isInForkedChild()) {
    checkpointer_.abandon();
  }
}

std::optional<Value> LinuxUserDefaults::get(std::string_view key) {
  file_.openOnce();
  std::optional<Value> value = cache_.get(key);
  if (!value && cache_.contains(key)) {  // It is in the file only, or was until another thread read it just now.
    file_.readOnce(key);
    value = cache_.get(key);
  }
  return value;
}

bool LinuxUserDefaults::contains(std::string_view key) {
  file_.openOnce();
  return cache_.contains(key);
}

bool LinuxUserDefaults::set(std::string_view key, Value value) {
  file_.openOnce();
  if (isContainer(value)) {
    file_.readOnce(key);  // To be compared with.
  }
  return cache_.set(key, std::move(value));
}

void LinuxUserDefaults::remove(std::string_view key) {
  file_.openOnce();
  cache_.remove(key);
}

void LinuxUserDefaults::appendString(std::string_view key, std::string_view suffix) {
  file_.openOnce();
  cache_.append(key, suffix);
}

std::optional<std::string> LinuxUserDefaults::takeString(std::string_view key) {
  file_.openOnce();
  return cache_.takeText(key);
}

std::vector<std::string> LinuxUserDefaults::keys() {
  file_.openOnce();
  return cache_.keys();
}

bool LinuxUserDefaults::synchronize() {
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

void LinuxUserDefaults::checkpoint() {
  if (file_.isInForkedChild()) {
    return;
  }
  file_.openOnce();
  {
    const MutexLock lock(checkpointMutex_);
    for (int pass = 0; pass < kCheckpointPasses && !checkpointOnce(); ++pass) {
    }
  }
  file_.logWarnings();
}

// Returns true when nothing is left to do. The slow parts, which wait for the disk, lock nothing that others need.
bool LinuxUserDefaults::checkpointOnce() {
  const auto checkpoint = file_.beginCheckpoint(checkpointer_);
  if (!checkpoint) {
    return true;
  }
  if (checkpoint->isUnchecked && !file_.noteChecked(*checkpoint, checkpointer_.findsDamage(checkpoint->path))) {
    return false;
  }
  const bool isMoved = checkpointer_.moveJournal(checkpoint->path);
  return file_.finishCheckpoint(*checkpoint, isMoved, checkpointer_);
}

}  // namespace kesu
