// dialog_slot.h - there is at most one settings dialog, and none outlives the plugin's shutdown.
// The mutex guards two flags; it is held for a look at them and released while waiting.
#pragma once
#include <chrono>
#include <condition_variable>
#include <mutex>

class DialogSlot {
  public:
    // [any] True: the caller runs the dialog and calls leave when it is gone. False: another runs, or the plugin ends.
    bool enter() {
        const std::lock_guard lock(mutex_);
        if (isTaken_ || isClosing_) return false;
        isTaken_ = true;
        return true;
    }
    // [dialog] Only once nothing of the dialog is left.
    void leave() {
        const std::lock_guard lock(mutex_);
        isTaken_ = false;
        left_.notify_all();
    }
    // [host] As a shutdown begins: from here on no dialog begins, and one that has begun learns it from isClosing.
    void close() {
        const std::lock_guard lock(mutex_);
        isClosing_ = true;
    }
    bool isClosing() {
        const std::lock_guard lock(mutex_);
        return isClosing_;
    }
    // [host] False when a dialog is still there after waitMs.
    bool waitUntilFree(int waitMs) {
        std::unique_lock lock(mutex_);
        return left_.wait_for(lock, std::chrono::milliseconds(waitMs), [this] { return !isTaken_; });
    }
    // [host] At the next start: dialogs may begin again.
    void reopen() {
        const std::lock_guard lock(mutex_);
        isClosing_ = false;
    }

  private:
    std::mutex mutex_;
    std::condition_variable left_;
    bool isTaken_ = false;
    bool isClosing_ = false;
};
