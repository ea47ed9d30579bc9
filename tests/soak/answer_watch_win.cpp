#include "tests/soak/answer_watch_win.h"
#include "tests/soak/stopwatch_win.h"

namespace {

constexpr std::uint64_t kPeriodNs = 100'000'000;
constexpr UINT kLongestMs = 60'000;  // then it is counted as that long

}  // namespace

void AnswerWatch::run() {
    while (!isOver_) {
        const std::uint64_t round = answers_.begin();
        const std::uint64_t startNs = nowNs();
        DWORD_PTR ignored = 0;
        SendMessageTimeoutW(window_, WM_NULL, 0, 0, SMTO_NORMAL, kLongestMs, &ignored);
        answers_.add(round, nowNs() - startNs);
        waitUntil(startNs + kPeriodNs);
    }
}

void AnswerWatch::stop() {
    isOver_ = true;
    if (thread_.joinable()) thread_.join();
}
