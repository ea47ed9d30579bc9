#include "messages/message_intake.h"
#include <cstring>
#include <string_view>
#include "audio/alert_player.h"
#include "base/display_text.h"
#include "base/log_line.h"

namespace {

constexpr std::size_t kLogBytes = 256;
constexpr const char* kNoSender = "(unknown)";

// For a log that shows one line an entry: what could break or turn it becomes '?'. Bytes that are not UTF-8 stay. Of
// the name no more is read than a line can hold.
std::string harmless(std::string_view name) {
    std::string text;
    std::string_view rest = name.substr(0, kLogBytes);
    while (!rest.empty()) {
        const auto [point, bytes] = decodePoint(rest);
        const bool isHarmful = isControl(point) || isDirectionControl(point) || point == 0x2028 || point == 0x2029;
        text += isHarmful ? std::string_view("?") : rest.substr(0, bytes);
        rest.remove_prefix(bytes);
    }
    return text;
}

// Ends the process when memory is out.
void storeMessage(const HostText& message, MessageStore& store, std::uint64_t nowMs) noexcept {
    addMessage(store, message.sender ? message.sender : "", message.text, message.target, message.senderId, nowMs);
}

void logMessage(const HostText& message, const HostFunctions& host) {
    if (!host.logMessage) return;
    const std::string line = "Corvalis text message from " + harmless(message.sender ? message.sender : kNoSender) +
                             " (" + std::to_string(std::strlen(message.text)) + " bytes)";
    logToHost(host, line, kLogBytes);
}

}  // namespace

void playTextAlert(const AlertRooms& rooms) {
    playTextAlertSound(rooms.host, rooms.settings, rooms.schid, rooms.alertPath);
    if (copySettings(rooms.settings).text_auto_open) rooms.window.openNewest();
}

void takeTextMessage(const HostText& message, MessageStore& store, const Clock& clock, const AlertRooms& rooms) {
    if (!message.text || !*message.text) return;
    storeMessage(message, store, clock.tickMs());
    logMessage(message, rooms.host);
    playTextAlert(rooms);
}
