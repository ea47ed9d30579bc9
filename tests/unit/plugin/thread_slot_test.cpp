// thread_slot_test.cpp - what stays as it was when a thread cannot be made.
#include "plugin/thread_slot.h"
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>
#include <string>

namespace {

std::string gLine;

unsigned keepLine(const char* text, int severity, const char* channel, std::uint64_t logId) {
    gLine = std::string(text) + '|' + std::to_string(severity) + '|' + channel + '|' + std::to_string(logId);
    return 0;
}

// Cannot be handed to a thread: what the making of one may run into, at that very place.
template <class Thrown>
struct Unmovable {
    Unmovable() = default;
    [[noreturn]] Unmovable(const Unmovable&) { Thrown::raise(); }
    void operator()() const {}
};
struct NoThreadLeft {
    [[noreturn]] static void raise() {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
};
struct NoMemory {
    [[noreturn]] static void raise() { throw std::bad_alloc(); }
};
struct Anything {
    [[noreturn]] static void raise() { throw std::runtime_error("for whatever reason"); }
};

template <class Thrown>
void expectAllAsItWas(int code) {
    const Unmovable<Thrown> body;
    ThreadSlot slot;
    for (const bool before : {false, true}) {
        std::atomic<bool> stop{before};
        EXPECT_EQ(startWithStopFlag(slot, stop, body), code);
        EXPECT_EQ(stop, before);
        EXPECT_FALSE(slot.isRunning());
    }
    std::atomic<bool> hasRun{false}, stop{true};
    EXPECT_EQ(startWithStopFlag(slot, stop, [&] { hasRun = !stop; }), 0);
    EXPECT_TRUE(slot.isRunning());
    slot.join();
    EXPECT_TRUE(hasRun);
}

}  // namespace

TEST(ThreadSlot, ThatGetsNoThreadLeavesTheStopFlagAndTheWayFreeForTheNext) {
    expectAllAsItWas<NoThreadLeft>(EAGAIN);
    expectAllAsItWas<NoMemory>(ENOMEM);
    expectAllAsItWas<Anything>(ENOMEM);
}

TEST(ThreadSlot, ForWhichMemoryWasShortForAMomentIsMadeAllTheSame) {
    struct ShortOnce {
        ShortOnce(int& copiesToFail, std::atomic<bool>& run) : failures(copiesToFail), hasRun(run) {}
        ShortOnce(const ShortOnce& other) : failures(other.failures), hasRun(other.hasRun) {
            if (failures-- > 0) throw std::bad_alloc();
        }
        void operator()() const { hasRun = true; }
        int& failures;
        std::atomic<bool>& hasRun;
    };
    for (const int copiesToFail : {1, 2}) {
        int failures = copiesToFail;
        std::atomic<bool> hasRun{false};
        ThreadSlot slot;
        EXPECT_EQ(slot.start(ShortOnce(failures, hasRun)), copiesToFail == 1 ? 0 : ENOMEM);
        slot.join();
        EXPECT_EQ(hasRun, copiesToFail == 1);
    }
}

TEST(ThreadSlot, WithoutAThreadIsNamedInTheLogWithTheCode) {
    HostFunctions host;
    logMissingThread(host, "poll", 11);  // nobody to tell
    host.logMessage = keepLine;
    logMissingThread(host, "poll", 11);
    EXPECT_EQ(gLine, "Corvalis cannot start its poll thread (error 11); going on without it|4|Corvalis|0");
}
