// lost_pass_realtime_test.cpp - a pass that is lost to memory while there is none for a word about it either. Replaces
// the C++ library's allocation, so it only exists where no sanitizer does the same.
#include <gtest/gtest.h>
#include "bridge/poll_loop.h"

#if defined(__linux__) && !defined(CORVALIS_SANITIZED)
#include <cstdlib>
#include <new>

namespace {

thread_local bool gIsRefused = false;

}  // namespace

// These replace the C++ library's in this whole program.
void* operator new(std::size_t bytes) {
    void* const memory = gIsRefused ? nullptr : std::malloc(bytes);
    return memory ? memory : throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

TEST(LostPass, WithoutMemoryForAReasonTheLineSaysDisconnectedAllTheSame) {
    SimRadios radios;
    setStatusText(radios.status, "CONNECTED");
    gIsRefused = true;
    tryPass(radios, [] { throw std::bad_alloc(); });
    gIsRefused = false;
    EXPECT_EQ(copyStatus(radios.status).statusText, "DISCONNECTED");
    EXPECT_FALSE(copySimState(radios.sim).connected);
}

#endif
