#include "platform/linux/http/HttpExit.h"

#include <openssl/crypto.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/linux/base/ForkGuard.h"
#include "platform/linux/http/HttpNetwork.h"

namespace kesu {
namespace {

// Replies that are on their way when the process exits get this long; together with the rest of an orderly end it stays
// below 50 ms.
constexpr double kExitGraceSeconds = 0.04;

struct Registry {
  const ForkGuard forkGuard;
  Mutex mutex;
  std::vector<HttpNetwork*> networks KESU_GUARDED_BY(mutex);
  Registry* ofParent = nullptr;  // In a forked child: what it inherited and must not touch, nor lose.
};

// A registry is never destroyed: clients with static lifetime end after any handler. A forked child starts a new one:
// the threads of the old one do not exist there, and its mutex may be locked for ever.
Registry& registry() {
  static std::atomic<Registry*> current{nullptr};
  Registry* known = current.load();
  while (known == nullptr || known->forkGuard.isForkedChild()) {
    auto made = std::make_unique<Registry>();
    made->ofParent = known;
    if (current.compare_exchange_strong(known, made.get())) {
      return *made.release();
    }
  }
  return *known;
}

void stopAll() {
  Registry& all = registry();
  const MutexLock lock(all.mutex);
  for (HttpNetwork* const network : all.networks) {
    network->stop(kExitGraceSeconds);
  }
  all.networks.clear();
}

}  // namespace

void HttpExit::prepare() {
  static const bool registered = [] {
    OPENSSL_init_crypto(OPENSSL_INIT_ADD_ALL_DIGESTS, nullptr);  // Without an option it would register nothing.
    return std::atexit(stopAll) == 0;
  }();
  static_cast<void>(registered);
}

void HttpExit::add(HttpNetwork& network) {
  prepare();
  Registry& all = registry();
  const MutexLock lock(all.mutex);
  all.networks.push_back(&network);
}

void HttpExit::remove(HttpNetwork& network) {
  Registry& all = registry();
  const MutexLock lock(all.mutex);
  std::erase(all.networks, &network);
}

}  // namespace kesu
