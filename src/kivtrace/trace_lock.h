#pragma once

#include <pthread.h>

namespace kiv {

// Lets one thread at a time into a trace. It may nest its calls, but not begin one inside another:
// that is an allocator that traces the memory which the writer takes.
class trace_lock {
 public:
  trace_lock() {
    pthread_mutexattr_t kind;
    pthread_mutexattr_init(&kind);
    pthread_mutexattr_settype(&kind, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&mutex_, &kind);
    pthread_mutexattr_destroy(&kind);
  }
  ~trace_lock() { pthread_mutex_destroy(&mutex_); }
  trace_lock(const trace_lock&) = delete;
  trace_lock& operator=(const trace_lock&) = delete;

  bool lock() { return pthread_mutex_lock(&mutex_) == 0; }
  // False for a thread that does not hold it.
  bool unlock() { return pthread_mutex_unlock(&mutex_) == 0; }

  // The time of one call.
  class call {
   public:
    explicit call(trace_lock& lock)
        : lock_(lock), holds_(lock.lock()), begun_(holds_ && !lock.in_call_) {
      if (begun_) lock_.in_call_ = true;
    }
    ~call() {
      if (begun_) lock_.in_call_ = false;
      if (holds_) lock_.unlock();
    }
    call(const call&) = delete;
    call& operator=(const call&) = delete;
    bool begun() const { return begun_; }

   private:
    trace_lock& lock_;
    const bool holds_;
    const bool begun_;
  };

 private:
  pthread_mutex_t mutex_{};
  bool in_call_ = false;
};

}  // namespace kiv
