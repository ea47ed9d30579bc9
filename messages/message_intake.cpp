#include "messages/message_intake.h"
#include <cstring>
#include <string_view>
#include "audio/alert_player.h"
#include "base/display_text.h"
#include "base/log_line.h"
#include "base/utf8.h"

namespace {

constexpr std::size_t kLogBytes = 256;
constexpr const char* kNotKept = "Corvalis has no memory to keep a text message";
constexpr const char* kNoSender = "(unknown)";

// For a log with one line per entry: what could break it or turn its direction becomes '?'. Bytes that are not UTF-8
// stay. Reads no more of the name than a line can hold.
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

// One thing that a message sets off; without memory for it the others still happen.
template <class Step>
void attempt(Step step) noexcept {
    try {
        step();
    } catch (...) {
        // Mostly no memory.
    }
}

void logMessage(const HostText& message, const HostFunctions& host) {
    if (!host.logMessage) return;
    const std::string line = "Corvalis text message from " + harmless(message.sender ? message.sender : kNoSender) +
                             " (" + std::to_string(std::strlen(message.text)) + " bytes)";
    logToHost(host, line, kLogBytes);
}

}  // namespace

void playTextAlert(const AlertContext& context) noexcept {
    attempt([&] { playTextAlertSound(context.host, context.settings, context.schid, context.alertPath); });
    attempt([&] {
        if (copySettings(context.settings).text_auto_open) context.window.openNewest();
    });
}

void takeTextMessage(const HostText& message, MessageStore& store, const Clock& clock,
                     const AlertContext& context) noexcept {
    if (!message.text || !*message.text) return;
    const char* const sender = message.sender ? message.sender : "";
    const std::uint32_t number =
        addMessage(store, sender, message.text, message.target, message.senderId, clock.tickMs());
    if (number == 0 && context.host.logMessage)
        attempt([&] { context.host.logMessage(kNotKept, kLogInformation, kLogChannel, 0); });
    attempt([&] { logMessage(message, context.host); });
    playTextAlert(context);
}
