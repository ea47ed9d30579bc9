// window_watch_win.h - watches a thread of this process that has windows, and tells when it has carried out what was
// posted to it.
// [host] Used from a test's main thread; one watch at a time.
#pragma once
#include <windows.h>
#include <functional>

// Returns when the window's thread has carried out everything posted to it before. Sent messages overtake posted ones,
// so a posted marker tells, seen when the thread takes it from its queue. What those messages post in turn comes after
// the marker. False after 30 s.
bool waitForPosted(HWND window);

class WindowWatch {
  public:
    // Called on the window's thread.
    struct Looks {
        std::function<void(MSG& message)> onTaken;       // from the queue, about to be carried out; may be changed
        std::function<void(const MSG& message)> onSent;  // about to reach a window procedure
    };
    WindowWatch(HWND window, Looks looks);
    ~WindowWatch();
    WindowWatch(const WindowWatch&) = delete;
    WindowWatch& operator=(const WindowWatch&) = delete;

    bool isWatching() const { return takenHook_ && sentHook_; }

  private:
    const HWND window_;
    HHOOK takenHook_ = nullptr;
    HHOOK sentHook_ = nullptr;
};
