// host_thread_win.h - what the plugin does on the host's main thread, which in a test is the test's own.
// [host] Made and destroyed on that thread, while the DLL is loaded; one object at a time.
#pragma once
#include <windows.h>
#include <atomic>
#include "tests/client/import_patch_win.h"

inline const DWORD gHostThread = GetCurrentThreadId();  // the one that starts the program
inline bool isHostThread() {
    return GetCurrentThreadId() == gHostThread;
}

// Counts the milliseconds for which the plugin asks to sleep on the host's thread.
class HostPauses {
  public:
    explicit HostPauses(const wchar_t* module) : patch_(module, "Sleep", reinterpret_cast<void*>(countAndSleep)) {
        sum_ = patch_.isInPlace() ? 0 : kNotCounted;
    }
    DWORD ms() const { return sum_; }

  private:
    static constexpr DWORD kNotCounted = 1'000'000'000;  // fails any test
    static void WINAPI countAndSleep(DWORD ms) {
        if (isHostThread()) sum_ += ms;
        Sleep(ms);
    }

    static inline std::atomic<DWORD> sum_{0};
    ImportPatch patch_;
};
