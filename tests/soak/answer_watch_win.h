// answer_watch_win.h - how long a window takes to answer a message that asks for nothing, ten times a second, from a
// thread of its own: what a pilot feels of a busy UI thread.
#pragma once
#include <windows.h>
#include <atomic>
#include <thread>
#include "tests/soak/shared_times.h"

class AnswerWatch {
  public:
    explicit AnswerWatch(HWND window) : window_(window), thread_([this] { run(); }) {}
    ~AnswerWatch() { stop(); }
    AnswerWatch(const AnswerWatch&) = delete;
    AnswerWatch& operator=(const AnswerWatch&) = delete;

    void stop();
    SharedTimes& answers() { return answers_; }  // [any]

  private:
    void run();

    const HWND window_;
    std::atomic<bool> isOver_{false};  // the owner stores, the thread loads
    SharedTimes answers_;
    std::thread thread_;  // last: it starts when all the others are in place
};
