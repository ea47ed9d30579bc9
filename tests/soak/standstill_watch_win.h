// standstill_watch_win.h - ends the program when it has come to a standstill, and says where.
#pragma once
#include <windows.h>
#include <thread>
#include "tests/soak/progress.h"

class StandstillWatch {
  public:
    explicit StandstillWatch(const Progress& progress);
    ~StandstillWatch();
    StandstillWatch(const StandstillWatch&) = delete;
    StandstillWatch& operator=(const StandstillWatch&) = delete;

  private:
    const HANDLE over_;
    std::thread thread_;
};
