#include "worker/single_worker.h"
#include <cstdint>
#include "base/ascii_text.h"

// FNV-1a, 64 bit: a mutex name must not hold a path's backslashes and has a length limit.
std::string workerMutexName(std::string_view canonicalPath) {
    while (canonicalPath.ends_with('\\')) canonicalPath.remove_suffix(1);
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (const char c : canonicalPath) hash = (hash ^ static_cast<unsigned char>(lowerAscii(c))) * 0x100000001b3u;
    std::string name = "Local\\CorvalisWorker-";
    for (int shift = 60; shift >= 0; shift -= 4) name += "0123456789abcdef"[(hash >> shift) & 15u];
    return name;
}
