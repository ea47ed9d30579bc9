// shutdowns_win.h - the plugin is shut down at moments drawn at random, with anything open and its worker flying,
// silent, hung, gone or never there, and each shutdown is timed.
#pragma once
#include <cstdint>

// [host] Prints the slowest, with what had been done before, and a verdict. isTimed: each must take at most a second,
// not counting what the machine withheld (withheld_time_win.h). 0 if all ended in time and nothing was left behind.
int runShutdowns(int moments, std::uint64_t seed, bool isTimed);
