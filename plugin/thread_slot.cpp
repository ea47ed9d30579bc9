#include "plugin/thread_slot.h"
#include <cstdio>

void logMissingThread(const HostFunctions& host, const char* name, int error) noexcept {
    if (!host.logMessage) return;
    char line[128];
    std::snprintf(line, sizeof line, "Corvalis cannot start its %s thread (error %d); going on without it", name,
                  error);
    host.logMessage(line, kLogInformation, kLogChannel, 0);
}
