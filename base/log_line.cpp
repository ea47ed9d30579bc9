#include "base/log_line.h"
#include "base/utf8.h"

void logToHost(const HostFunctions& host, std::string_view text, std::size_t bufferBytes) {
    if (!host.logMessage) return;
    const std::string line(cutUtf8(text, bufferBytes - 1));
    host.logMessage(line.c_str(), kLogInformation, kLogChannel, 0);
}
