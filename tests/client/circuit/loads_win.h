// loads_win.h - the plugin is loaded into one process again and again, used in ways drawn at random and unloaded, while
// the host's own threads live on; and whatever this process holds of the system is counted in between.
#pragma once
#include <cstdint>

// [host] Prints a table and a verdict for each count. 0 if nothing has grown and nothing was left behind.
int runLoads(int loads, std::uint64_t seed);
