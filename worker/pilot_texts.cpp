#include "worker/pilot_texts.h"
#include "base/utf8.h"
#include "worker/radio_types.h"

namespace pilot {

namespace {

std::string withHost(std::string_view before, std::string_view host, std::string_view behind = {}) {
    constexpr std::string_view kDots = "...";
    const auto room = kMaxPilotBytes - before.size() - behind.size();
    std::string text(before);
    if (host.size() <= room)
        text += host;
    else
        text.append(cutUtf8(host, room - kDots.size())).append(kDots);
    return text.append(behind);
}

std::string withError(const char* problem, std::uint32_t error) {
    return std::string(problem) + " (error " + std::to_string(error) + ')';
}

}  // namespace

std::string noAnswerText(std::string_view host) {
    return withHost(kNoAnswerFrom, host);
}

std::string noSuchComputerText(std::string_view host) {
    return withHost(kNoSuchComputer, host);
}

std::string noThreadText(std::string_view host) {
    return withHost(kNoThreadToLook, host, " up");
}

std::string notReachableText(std::uint32_t error) {
    return withError("simulator not reachable", error);
}

std::string readingFailedText(std::uint32_t error) {
    return withError("reading failed", error);
}

std::string radioFaultsText(std::string_view com1, std::string_view com2) {
    if (com1 == com2) return com1.empty() ? "" : "COM1 and COM2 " + std::string(com1);
    std::string text = com1.empty() ? "" : radioName(0) + ' ' + std::string(com1);
    if (!com1.empty() && !com2.empty()) text += ", ";
    return com2.empty() ? text : text + radioName(1) + ' ' + std::string(com2);
}

std::string radiosText(std::string_view simulator, const std::string& faults, bool isPaused) {
    const std::string state = isPaused ? kPaused : kFlying;
    auto text = faults.empty() ? state + ", " : std::string(simulator) + ": ";
    text += faults.empty() ? simulator : faults;
    if (text.size() <= kMaxPilotBytes) return text;
    return faults.empty() ? state : faults;
}

std::string refusedText(std::string_view shown) {
    return std::string(kRefused) + "; shows " + std::string(shown);
}

std::string pilotLine(std::string_view text) {
    return std::string(cutUtf8(text, kMaxPilotBytes));
}

}  // namespace pilot
