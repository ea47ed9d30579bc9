#include "tests/soak/planted_leak_win.h"
#include <windows.h>
#include <cstring>
#include "tests/soak/own_memory_win.h"

namespace {

constexpr std::size_t kBytes = 100'000;

void leakMemory() {
    void* const memory = OwnMemory::takeAsThePlugin(kBytes);
    if (memory) std::memset(memory, 0x5A, kBytes);  // a page counts once it has been written to
}

}  // namespace

LeakPlanter::~LeakPlanter() {
    isOver_ = true;
    isOver_.notify_all();
    for (std::thread& thread : threads_) thread.join();
}

void LeakPlanter::grow() {
    switch (kind_) {
        case PlantedLeak::kNone:
            return;
        case PlantedLeak::kMemory:
            return leakMemory();
        case PlantedLeak::kHandle:
            CreateEventW(nullptr, TRUE, FALSE, nullptr);
            return;
        case PlantedLeak::kGdi:
            CreateSolidBrush(RGB(1, 2, 3));
            return;
        case PlantedLeak::kUser:
            CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
            return;
        case PlantedLeak::kThread:
            threads_.emplace_back([this] { isOver_.wait(false); });
            return;
    }
}
