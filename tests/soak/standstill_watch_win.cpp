#include "tests/soak/standstill_watch_win.h"
#include <cstdio>

namespace {

constexpr DWORD kBetweenLooksMs = 1000;
constexpr int kMostLooks = 300;  // no deed takes minutes, except one that hangs
constexpr UINT kStuckCode = 4;

}  // namespace

StandstillWatch::StandstillWatch(const Progress& progress)
    : over_(CreateEventW(nullptr, TRUE, FALSE, nullptr)), thread_([this, &progress] {
          StandstillJudge judge(kMostLooks);
          while (WaitForSingleObject(over_, kBetweenLooksMs) != WAIT_OBJECT_0) {
              if (!judge.isStuck(progress.steps())) continue;
              std::printf("STUCK: nothing goes on any more, at: %s\n", progress.deed());
              std::fflush(stdout);
              TerminateProcess(GetCurrentProcess(), kStuckCode);
          }
      }) {}

StandstillWatch::~StandstillWatch() {
    SetEvent(over_);
    thread_.join();
    CloseHandle(over_);
}
