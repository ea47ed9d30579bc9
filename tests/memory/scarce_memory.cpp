#include "tests/memory/scarce_memory.h"
#include <cstdlib>

namespace {

// Of the calling thread.
struct Counter {
    bool isCounting = false;
    int exempt = 0;  // depth of PlentyOfMemory
    int left = 0;    // allocations until the first that gets nothing
    bool isLasting = false;
    int refusals = 0;
};
thread_local Counter tCounter;

bool isRefused() {
    Counter& counter = tCounter;
    if (!counter.isCounting || counter.exempt > 0) return false;
    if (counter.left > 0) counter.left--;
    const bool isFirst = counter.left == 0 && counter.refusals == 0;
    const bool isRefusedNow = isFirst || (counter.refusals > 0 && counter.isLasting);
    counter.refusals += isRefusedNow ? 1 : 0;
    return isRefusedNow;
}

void* tryAllocate(std::size_t bytes) {
    return isRefused() ? nullptr : std::malloc(bytes > 0 ? bytes : 1);
}

void* allocate(std::size_t bytes) {
    void* const memory = tryAllocate(bytes);
    return memory ? memory : throw std::bad_alloc();
}

}  // namespace

// These replace the C++ library's in this whole program.
void* operator new(std::size_t bytes) {
    return allocate(bytes);
}
void* operator new[](std::size_t bytes) {
    return allocate(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return tryAllocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return tryAllocate(bytes);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

ScarceMemory::ScarceMemory(int first, Shortage shortage) {
    tCounter = {
        .isCounting = true, .exempt = 0, .left = first, .isLasting = shortage == Shortage::kLasting, .refusals = 0};
}

ScarceMemory::~ScarceMemory() {
    tCounter.isCounting = false;
}

int ScarceMemory::refusals() {
    return tCounter.refusals;
}

PlentyOfMemory::PlentyOfMemory() {
    tCounter.exempt++;
}

PlentyOfMemory::~PlentyOfMemory() {
    tCounter.exempt--;
}
