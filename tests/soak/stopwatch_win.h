// stopwatch_win.h - the counter that times blocks and answers, and a wait by it. [any]
#pragma once
#include <cstdint>

std::uint64_t nowNs();  // since the system's start; never steps back
// Sleeps until then, to within the grain of the system's timer; returns at once if that has passed.
void waitUntil(std::uint64_t timeNs);
