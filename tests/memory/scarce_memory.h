// scarce_memory.h - memory that runs out at a chosen moment. Replaces the C++ library's allocation in its whole
// program, under the sanitizers too: what is then lost, used after its end or left locked is found by them or by the
// next step.
#pragma once
#include <gtest/gtest.h>
#include <new>

enum class Shortage {
    kOnce,     // one allocation gets nothing
    kLasting,  // nor does any after it
};

// While it lives, the calling thread's allocation number `first` gets nothing; 1 is the next one. One at a time.
class ScarceMemory {
  public:
    ScarceMemory(int first, Shortage shortage);
    ~ScarceMemory();
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;

    static int refusals();
};

// While it lives, what the calling thread allocates counts for nothing and is always granted: for whatever stands in
// for the host, the disk and the simulator.
class PlentyOfMemory {
  public:
    PlentyOfMemory();
    ~PlentyOfMemory();
    PlentyOfMemory(const PlentyOfMemory&) = delete;
    PlentyOfMemory& operator=(const PlentyOfMemory&) = delete;
};

// Runs step for each of its allocations in turn, and for both shortages, in a fresh world each time: step(world) under
// the shortage, then check(world, wasRefused) with memory again. Ends behind the step's last allocation. Returns how
// many there were.
template <class World, class Step, class Check>
int forEveryAllocation(const Step& step, const Check& check) {
    int count = 0;
    for (const Shortage shortage : {Shortage::kOnce, Shortage::kLasting}) {
        for (int first = 1;; first++) {
            const testing::ScopedTrace trace(__FILE__, __LINE__,
                                             "allocation " + std::to_string(first) +
                                                 (shortage == Shortage::kOnce ? " fails" : " and all after it fail"));
            World world;
            int refusals = 0;
            {
                const ScarceMemory scarce(first, shortage);
                step(world);
                refusals = ScarceMemory::refusals();
            }
            check(world, refusals > 0);
            if (testing::Test::HasFatalFailure()) return count;
            if (refusals == 0) break;
            count++;
        }
    }
    EXPECT_GT(count, 0) << "the step allocates nothing";
    return count;
}
