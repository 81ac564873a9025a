#pragma once

#include <atomic>
#include <memory>

#include "foundation/Mutex.h"

namespace kesu {

/// Destroys every shared instance in the reverse order of creation, so that the next get() of each makes a fresh one.
/// For tests: no other thread may use a shared instance meanwhile, and earlier references are invalid afterwards. An
/// instance that a destructor makes meanwhile is destroyed as well.
void resetSharedInstances();

/// Registers the destruction of an instance that was just made. For SharedInstance only.
void rememberSharedInstance(void (*destroy)());

/// The one object of class T in the process, made by the first get().
///
/// It is never destroyed when the process ends: exit handlers and threads that are still running may use it. Creation
/// happens once even when several threads ask at the same time; the others wait. A factory may get() shared instances
/// of other classes (they then count as created before), never its own class: that would wait for itself. Once made,
/// get() costs one atomic load.
template <class T>
class SharedInstance {
 public:
  /// Returns the instance. `make()` returns a new one as std::unique_ptr<T>, never null; called only when there is
  /// none.
  template <class Factory>
  static T& get(Factory make) {
    T* instance = instance_.load(std::memory_order_acquire);
    return instance != nullptr ? *instance : create(make);
  }

  /// The same for a class with a default constructor.
  static T& get() {
    return get([] { return std::make_unique<T>(); });
  }

  /// Returns the instance; null when it was not made, or was destroyed.
  static T* existing() { return instance_.load(std::memory_order_acquire); }

 private:
  template <class Factory>
  static T& create(Factory& make) {
    const MutexLock lock(creation_);
    T* instance = instance_.load(std::memory_order_relaxed);
    if (instance == nullptr) {
      instance = make().release();
      rememberSharedInstance(&destroy);
      instance_.store(instance, std::memory_order_release);
    }
    return *instance;
  }

  // The pointer is cleared last: what the destructor calls still finds the instance instead of making another.
  static void destroy() {
    std::unique_ptr<T> instance(instance_.load(std::memory_order_acquire));
    instance.reset();
    instance_.store(nullptr, std::memory_order_release);
  }

  static inline std::atomic<T*> instance_{nullptr};
  static inline Mutex creation_;
};

}  // namespace kesu
