#pragma once

#include <kesu/Export.h>
#include <pthread.h>

// Clang checks these at compile time (-Wthread-safety); other compilers skip them.
#if defined(__clang__)
#define KESU_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define KESU_THREAD_ANNOTATION(x)
#endif

#define KESU_GUARDED_BY(mutex) KESU_THREAD_ANNOTATION(guarded_by(mutex))
#define KESU_REQUIRES(...) KESU_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define KESU_EXCLUDES(...) KESU_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))

namespace kesu {

/// A mutex that Clang's thread-safety analysis understands. Works with std::condition_variable_any.
///
/// Who finds it locked tries for some microseconds before it sleeps. Most sections are shorter, and waking a sleeper
/// costs the thread that unlocks more than they do: that is often the host's, which posts, while the worker and the
/// network wait.
class KESU_THREAD_ANNOTATION(capability("mutex")) Mutex {
 public:
  void lock() KESU_THREAD_ANNOTATION(acquire_capability()) { pthread_mutex_lock(&mutex_); }
  void unlock() KESU_THREAD_ANNOTATION(release_capability()) { pthread_mutex_unlock(&mutex_); }
  bool try_lock() KESU_THREAD_ANNOTATION(try_acquire_capability(true)) { return pthread_mutex_trylock(&mutex_) == 0; }

 private:
  pthread_mutex_t mutex_ = PTHREAD_ADAPTIVE_MUTEX_INITIALIZER_NP;
};

/// Locks a Mutex for a scope.
class KESU_THREAD_ANNOTATION(scoped_lockable) MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) KESU_THREAD_ANNOTATION(acquire_capability(mutex)) : mutex_(mutex) { mutex_.lock(); }
  ~MutexLock() KESU_THREAD_ANNOTATION(release_capability()) { mutex_.unlock(); }

  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& mutex_;
};

}  // namespace kesu
