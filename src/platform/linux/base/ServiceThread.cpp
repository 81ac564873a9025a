#include "platform/linux/base/ServiceThread.h"

#include <pthread.h>
#include <signal.h>

#include <system_error>
#include <utility>

namespace kesu {
namespace {

/// Blocks every signal of the calling thread for a scope: a thread that is started meanwhile inherits the mask.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_{};
};

}  // namespace

std::thread startServiceThread(const char* name, std::function<void()> body) {
  const SignalsBlocked blocked;
  try {
    std::thread thread(std::move(body));
    pthread_setname_np(thread.native_handle(), name);
    return thread;
  } catch (const std::system_error&) {
    return {};
  }
}

}  // namespace kesu
