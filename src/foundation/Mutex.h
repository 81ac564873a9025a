#pragma once

#include <kesu/Export.h>

#include <mutex>

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

/// A std::mutex that Clang's thread-safety analysis understands. Works with std::condition_variable_any.
class KESU_THREAD_ANNOTATION(capability("mutex")) Mutex {
 public:
  void lock() KESU_THREAD_ANNOTATION(acquire_capability()) { mutex_.lock(); }
  void unlock() KESU_THREAD_ANNOTATION(release_capability()) { mutex_.unlock(); }
  bool try_lock() KESU_THREAD_ANNOTATION(try_acquire_capability(true)) { return mutex_.try_lock(); }

 private:
  std::mutex mutex_;
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
