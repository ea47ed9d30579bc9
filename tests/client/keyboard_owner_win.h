// keyboard_owner_win.h - stands for the program that the keyboard belongs to, the simulator: a window on a thread of
// its own that notes the keys it gets. And the hand of the user: keys and clicks as the system itself distributes them.
// [host] Used from a test's main thread; one owner at a time.
#pragma once
#include <windows.h>
#include <atomic>
#include <mutex>
#include <string>
#include <thread>

class KeyboardOwner {
  public:
    KeyboardOwner();  // at the screen's top left corner, with the keyboard
    ~KeyboardOwner();
    KeyboardOwner(const KeyboardOwner&) = delete;
    KeyboardOwner& operator=(const KeyboardOwner&) = delete;

    // Gets the keyboard back. False if it does not.
    bool takeKeyboard();
    bool hasKeyboard() const { return GetForegroundWindow() == window_; }
    std::string keys() const;               // the keys that came here, in order, each as its virtual key code
    int losses() const { return losses_; }  // of the keyboard, to any other window

  private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void run();

    std::atomic<HWND> window_{nullptr};
    std::atomic<int> losses_{0};
    mutable std::mutex mutex_;
    std::string keys_;  // guarded by mutex_
    std::thread thread_;
};

// Typed: the system gives it to the window that has the keyboard.
void typeKey(WORD key);
// Of the mouse: the system gives it to the window at that point of the screen. Each names its point, so that nothing
// depends on where the pointer is.
void clickScreen(POINT at);
void dragScreen(POINT from, POINT to);
void wheelScreen(POINT at, int delta);  // 120 per notch, away from the user positive
