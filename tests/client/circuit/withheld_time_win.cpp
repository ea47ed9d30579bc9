#include "tests/client/circuit/withheld_time_win.h"
#include <windows.h>

namespace {

double withheldOf(double beatMs, double plannedMs, double grainMs) {
    return beatMs > grainMs ? beatMs - plannedMs : 0.0;
}

}  // namespace

std::int64_t fineUs() {
    LARGE_INTEGER frequency, count;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&count);
    return count.QuadPart * 1'000'000 / frequency.QuadPart;
}

WithheldTime::WithheldTime()
    : asked_(CreateEventW(nullptr, FALSE, FALSE, nullptr)),
      answered_(CreateEventW(nullptr, FALSE, FALSE, nullptr)),
      begunUs_(fineUs()),
      first_([this] { beat(); }),
      second_([this] { answer(); }) {}

WithheldTime::~WithheldTime() {
    isLiving_ = false;
    first_.join();
    SetEvent(asked_);
    second_.join();
    CloseHandle(asked_);
    CloseHandle(answered_);
}

double WithheldTime::ms() const {
    const double beatMs = static_cast<double>(fineUs() - begunUs_) / 1000.0;
    return static_cast<double>(withheldUs_) / 1000.0 + withheldOf(beatMs, kBeatMs, kGrainMs);
}

void WithheldTime::beat() {
    while (isLiving_) {
        Sleep(static_cast<DWORD>(kBeatMs));
        SetEvent(asked_);
        WaitForSingleObject(answered_, INFINITE);
        const std::int64_t nowUs = fineUs();
        const double beatMs = static_cast<double>(nowUs - begunUs_) / 1000.0;
        withheldUs_ += static_cast<std::int64_t>(withheldOf(beatMs, kBeatMs, kGrainMs) * 1000.0);
        begunUs_ = nowUs;
    }
}

void WithheldTime::answer() {
    while (true) {
        WaitForSingleObject(asked_, INFINITE);
        SetEvent(answered_);  // also to the last question: whoever asked it waits
        if (!isLiving_) return;
    }
}
