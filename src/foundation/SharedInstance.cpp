#include "foundation/SharedInstance.h"

#include <vector>

namespace kesu {
namespace {

struct Made {
  Mutex mutex;
  std::vector<void (*)()> destroyers KESU_GUARDED_BY(mutex);
};

// Never destroyed, like the instances it lists.
Made& made() {
  static Made& list = *new Made;
  return list;
}

void (*takeNewest())() {
  Made& list = made();
  const MutexLock lock(list.mutex);
  if (list.destroyers.empty()) {
    return nullptr;
  }
  auto* const newest = list.destroyers.back();
  list.destroyers.pop_back();
  return newest;
}

}  // namespace

void rememberSharedInstance(void (*destroy)()) {
  Made& list = made();
  const MutexLock lock(list.mutex);
  list.destroyers.push_back(destroy);
}

// No mutex is locked while a destructor runs: it may use or make other instances.
void resetSharedInstances() {
  while (auto* const destroy = takeNewest()) {
    destroy();
  }
}

}  // namespace kesu
