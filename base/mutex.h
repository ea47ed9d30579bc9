// mutex.h - a plain mutex whose guarded fields Clang checks in the native build (GUARDED_BY).
// Each of our locks is held for a copy, an assignment or a short scan, never across a file, window or host call;
// the one exception is the settings-file mutex, which guards the file work itself.
#pragma once
#include <mutex>

#if defined(__clang__)
#define CORVALIS_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define CORVALIS_THREAD_ANNOTATION(x)
#endif

#define GUARDED_BY(x) CORVALIS_THREAD_ANNOTATION(guarded_by(x))
#define REQUIRES(...) CORVALIS_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))

class CORVALIS_THREAD_ANNOTATION(capability("mutex")) Mutex {
  public:
    void lock() CORVALIS_THREAD_ANNOTATION(acquire_capability()) { mutex_.lock(); }
    void unlock() CORVALIS_THREAD_ANNOTATION(release_capability()) { mutex_.unlock(); }

  private:
    std::mutex mutex_;
};

class CORVALIS_THREAD_ANNOTATION(scoped_lockable) MutexLock {
  public:
    explicit MutexLock(Mutex& mutex) CORVALIS_THREAD_ANNOTATION(acquire_capability(mutex)) : mutex_(mutex) {
        mutex_.lock();
    }
    ~MutexLock() CORVALIS_THREAD_ANNOTATION(release_capability()) { mutex_.unlock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

  private:
    Mutex& mutex_;
};
