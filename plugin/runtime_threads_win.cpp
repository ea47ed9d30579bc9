#include "plugin/runtime_threads_win.h"
#include <windows.h>
// Ours have the declarations of these headers.
#include <process.h>
#include <pthread.h>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <new>

namespace {

// A mutex and a condition are one word each. So are the system's lock and condition variable, and these need no end.
// At rest they are 0; the static initializers of the headers are -1 to -3, which no lock in use ever is.
template <class Lock>
Lock* systemLock(std::intptr_t* word) {
    static_assert(sizeof(Lock) == sizeof *word);
    std::atomic_ref<std::intptr_t> state(*word);
    std::intptr_t value = state;
    if (value >= -3 && value <= -1) state.compare_exchange_strong(value, 0);
    return reinterpret_cast<Lock*>(word);
}

SRWLOCK* lockOf(pthread_mutex_t* mutex) {
    return systemLock<SRWLOCK>(mutex);
}

CONDITION_VARIABLE* conditionOf(pthread_cond_t* condition) {
    return systemLock<CONDITION_VARIABLE>(condition);
}

// What pthread_t points to. It goes with the later of the thread's end and the join (or detach).
struct Thread {
    HANDLE handle = nullptr;
    unsigned id = 0;
    void* (*body)(void*) = nullptr;
    void* argument = nullptr;
    std::atomic<int> owners{2};  // the thread and whoever made it
};

void leave(Thread* thread) {
    if (--thread->owners == 0) delete thread;
}

unsigned __stdcall runThread(void* made) {
    auto* thread = static_cast<Thread*>(made);
    thread->body(thread->argument);
    leave(thread);
    return 0;
}

Thread* threadOf(pthread_t thread) {
    return reinterpret_cast<Thread*>(thread);  // NOLINT(performance-no-int-to-ptr): pthread_t is a number
}

// The slots in use: the C++ library takes one for exceptions, and one for each kind of its own that is never freed.
struct Slots {
    SRWLOCK lock = SRWLOCK_INIT;  // guards the rest, for a short scan
    DWORD taken[16] = {};
    int count = 0;
};
Slots gSlots;
std::atomic<bool> gIsClosed{false};  // stored at the unload; from then on a slot of ours may be somebody else's

class SlotsLock {
  public:
    SlotsLock() { AcquireSRWLockExclusive(&gSlots.lock); }
    ~SlotsLock() { ReleaseSRWLockExclusive(&gSlots.lock); }
    SlotsLock(const SlotsLock&) = delete;
    SlotsLock& operator=(const SlotsLock&) = delete;
};

// Windows counts in 100 ns since 1601, C since 1970.
constexpr std::int64_t kTicksTo1970 = 116'444'736'000'000'000;
constexpr std::int64_t kTicksPerSecond = 10'000'000;
constexpr std::int64_t kTicksPerMs = 10'000;

std::int64_t ticksSince1970() {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    return static_cast<std::int64_t>(std::uint64_t{now.dwHighDateTime} << 32U | now.dwLowDateTime) - kTicksTo1970;
}

std::int64_t ticksOf(const timespec& time) {
    return time.tv_sec * kTicksPerSecond + time.tv_nsec / 100;
}

// Rounded up: nobody is woken before the time.
DWORD waitMs(std::int64_t ticks) {
    constexpr std::int64_t kLongestMs = 0x7FFF'FFFF;
    return static_cast<DWORD>(std::clamp<std::int64_t>((ticks + kTicksPerMs - 1) / kTicksPerMs, 0, kLongestMs));
}

}  // namespace

void closeRuntimeThreads() {
    const SlotsLock lock;
    gIsClosed = true;
    for (int i = 0; i < gSlots.count; i++) FlsFree(gSlots.taken[i]);  // calls the destructor of every thread's value
    gSlots.count = 0;
}

// Each as its declaration and POSIX say, as far as the C++ library makes use of it: nothing is recursive, shared
// between processes, cancelled or given attributes.
extern "C" {

int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t*) {
    *mutex = 0;
    return 0;
}
int pthread_mutex_destroy(pthread_mutex_t*) {
    return 0;
}
int pthread_mutex_lock(pthread_mutex_t* mutex) {
    AcquireSRWLockExclusive(lockOf(mutex));
    return 0;
}
int pthread_mutex_unlock(pthread_mutex_t* mutex) {
    ReleaseSRWLockExclusive(lockOf(mutex));
    return 0;
}

int pthread_cond_destroy(pthread_cond_t*) {
    return 0;
}
int pthread_cond_signal(pthread_cond_t* condition) {
    WakeConditionVariable(conditionOf(condition));
    return 0;
}
int pthread_cond_broadcast(pthread_cond_t* condition) {
    WakeAllConditionVariable(conditionOf(condition));
    return 0;
}
int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
    SleepConditionVariableSRW(conditionOf(condition), lockOf(mutex), INFINITE, 0);
    return 0;
}
// The time is measured once, so that a clock that is set meanwhile makes the wait no longer.
int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* until) {
    const DWORD ms = waitMs(ticksOf(*until) - ticksSince1970());
    return SleepConditionVariableSRW(conditionOf(condition), lockOf(mutex), ms, 0) ? 0 : ETIMEDOUT;
}

int pthread_once(pthread_once_t* once, void (*work)()) {
    enum : pthread_once_t { kBegun = 1, kDone = 2 };
    std::atomic_ref<pthread_once_t> state(*once);
    while (state != kDone) {
        pthread_once_t before = PTHREAD_ONCE_INIT;
        if (!state.compare_exchange_strong(before, kBegun)) {
            Sleep(1);  // another thread is at it: it makes a slot or an empty object
            continue;
        }
        work();
        state = kDone;
    }
    return 0;
}

// A fiber-local slot calls the destructor at the thread's end, and for all threads when it is freed.
int pthread_key_create(pthread_key_t* key, void (*destroy)(void*)) {
    const SlotsLock lock;
    if (gIsClosed || gSlots.count == static_cast<int>(std::size(gSlots.taken))) return EAGAIN;
    const DWORD slot = FlsAlloc(destroy);
    if (slot == FLS_OUT_OF_INDEXES) return EAGAIN;
    gSlots.taken[gSlots.count++] = slot;
    *key = slot;
    return 0;
}
int pthread_key_delete(pthread_key_t key) {
    const SlotsLock lock;
    DWORD* const end = gSlots.taken + gSlots.count;
    DWORD* const slot = std::find(gSlots.taken, end, DWORD{key});
    if (slot == end) return EINVAL;
    *slot = gSlots.taken[--gSlots.count];
    FlsFree(key);
    return 0;
}
void* pthread_getspecific(pthread_key_t key) {
    if (gIsClosed) return nullptr;
    const DWORD error = GetLastError();  // FlsGetValue clears it
    void* const value = FlsGetValue(key);
    SetLastError(error);
    return value;
}
int pthread_setspecific(pthread_key_t key, const void* value) {
    if (gIsClosed) return EINVAL;
    return FlsSetValue(key, const_cast<void*>(value)) ? 0 : ENOMEM;
}

int pthread_create(pthread_t* thread, const pthread_attr_t*, void* (*body)(void*), void* argument) {
    auto* const made = new (std::nothrow) Thread;
    if (!made) return ENOMEM;
    made->body = body;
    made->argument = argument;
    const std::uintptr_t handle = _beginthreadex(nullptr, 0, runThread, made, 0, &made->id);
    if (handle == 0) {
        delete made;
        return EAGAIN;
    }
    made->handle = reinterpret_cast<HANDLE>(handle);  // NOLINT(performance-no-int-to-ptr): as the function returns it
    *thread = reinterpret_cast<pthread_t>(made);
    return 0;
}
int pthread_join(pthread_t thread, void** /*result*/) {
    Thread* const joined = threadOf(thread);
    if (joined->id == GetCurrentThreadId()) return EDEADLK;
    WaitForSingleObject(joined->handle, INFINITE);
    CloseHandle(joined->handle);
    leave(joined);
    return 0;
}
int pthread_detach(pthread_t thread) {
    CloseHandle(threadOf(thread)->handle);
    leave(threadOf(thread));
    return 0;
}
int pthread_num_processors_np() {
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    return static_cast<int>(system.dwNumberOfProcessors);
}

int nanosleep(const timespec* time, timespec* left) {
    Sleep(waitMs(ticksOf(*time)));
    if (left) *left = {};
    return 0;
}
int clock_gettime(clockid_t clock, timespec* time) {
    if (clock == CLOCK_REALTIME) {
        const std::int64_t ticks = ticksSince1970();
        *time = {ticks / kTicksPerSecond, static_cast<long>(ticks % kTicksPerSecond * 100)};
        return 0;
    }
    if (clock != CLOCK_MONOTONIC) {
        errno = EINVAL;
        return -1;
    }
    LARGE_INTEGER frequency, count;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&count);
    const std::int64_t rest = count.QuadPart % frequency.QuadPart;
    *time = {count.QuadPart / frequency.QuadPart, static_cast<long>(rest * 1'000'000'000 / frequency.QuadPart)};
    return 0;
}

}  // extern "C"
