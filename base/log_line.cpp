#include "base/log_line.h"

std::string_view cutUtf8(std::string_view text, std::size_t maxBytes) {
    if (text.size() <= maxBytes) return text;
    std::size_t end = maxBytes;
    // A continuation byte (10xxxxxx) at the cut belongs to a character that began before it. A character has at most
    // four bytes: text that is not UTF-8 is cut where it stands.
    for (int back = 0; back < 3 && end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80; back++) end--;
    if ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) end = maxBytes;
    return text.substr(0, end);
}

void logToHost(const HostFunctions& host, std::string_view text, std::size_t bufferBytes) {
    if (!host.logMessage) return;
    const std::string line(cutUtf8(text, bufferBytes - 1));
    host.logMessage(line.c_str(), kLogInformation, kLogChannel, 0);
}
