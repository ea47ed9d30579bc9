// resource_count_win.h - what this process holds of the system: to see that repeated work leaves nothing behind.
// [host] Used from the main thread of a test or a benchmark, while the other threads stand still or do the same work.
#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

struct ResourceCount {
    int gdiObjects = 0;
    int userObjects = 0;  // windows, if the system does not count the objects (Wine)
    int handles = 0;
    std::uint64_t privateBytes = 0;
};

ResourceCount countResources();
std::size_t heapBytes();  // in use in all heaps of this process
// Slots for values of threads (TlsAlloc) in use: of 1088, which all libraries of a process share.
int threadSlotCount();
// Slots for values of fibers (FlsAlloc) in use, beyond those at the first call.
int fiberSlotCount();
// How many handles of each type this process has: "Event", "Thread".
std::map<std::string, int> handleTypes();
// How many GDI objects of each kind: "device context", "font". None where the system has no table of them.
std::map<std::string, int> gdiKinds();
