#include "tests/simulator/script.h"
#include <cmath>
#include "tests/simulator/script_words.h"

namespace standin {

namespace {

bool readRadio(std::string_view word, Action& action) {
    if (word.size() != 4 || !isSameName(word.substr(0, 3), "COM") || word[3] < '1' || word[3] > '3') return false;
    action.radio = static_cast<std::size_t>(word[3] - '1');
    return true;
}

bool readSlot(std::string_view word, Action& action) {
    const auto slot = std::find_if(kSlotWords.begin(), kSlotWords.end(),
                                   [&](std::string_view name) { return isSameName(name, word); });
    if (slot == kSlotWords.end()) return false;
    action.slot = static_cast<Slot>(slot - kSlotWords.begin());
    return true;
}

bool readMegahertz(std::string_view word, Action& action) {
    if (action.slot != kActive && action.slot != kStandby) return false;
    if (!parseNumber(word, action.value)) return false;
    action.value = std::round(action.value * 1000.0) * 1000.0;
    return action.value > 0.0;
}

bool readNumber(std::string_view word, Action& action) {
    return parseNumber(word, action.value);
}

bool readSeconds(std::string_view word, Action& action) {
    if (!parseNumber(word, action.value)) return false;
    action.value *= 1000.0;
    return true;
}

bool readSwitch(std::string_view word, Action& action) {
    return parseOneOf(word, {"off", "on"}, action.value);
}

bool readSpacing(std::string_view word, Action& action) {
    return parseOneOf(word, {"25", "8.33"}, action.value);
}

bool readState(std::string_view word, Action& action) {
    return parseOneOf(word, {"menu", "running"}, action.value);
}

bool readName(std::string_view word, Action& action) {
    action.text = word;
    return true;
}

using enum ActionKind;

// clang-format off
const ActionRow<Action> kActions[] = {
    {"tune",        kTune,        0, {readRadio, readSlot, readMegahertz}, "tune COM1|COM2|COM3 active|standby MHZ"},
    {"swap",        kSwap,        0, {readRadio},                          "swap COM1|COM2|COM3"},
    {"volume",      kVolume,      0, {readRadio, readNumber},              "volume COM1|COM2|COM3 PERCENT"},
    {"power",       kPower,       0, {readRadio, readSwitch},              "power COM1|COM2|COM3 on|off"},
    {"spacing",     kSpacing,     0, {readRadio, readSpacing},             "spacing COM1|COM2|COM3 25|8.33"},
    {"obey",        kObey,        1, {readRadio, readSlot},                "obey COM1|COM2|COM3 SLOT"},
    {"ignore",      kObey,        0, {readRadio, readSlot},                "ignore COM1|COM2|COM3 SLOT"},
    {"readback",    kReadback,    0, {readNumber},                         "readback MILLISECONDS"},
    {"drop",        kDrop,        0, {readSeconds},                        "drop SECONDS"},
    {"crash",       kCrash,       0, {readSeconds},                        "crash SECONDS"},
    {"quit",        kQuit,        0, {readSeconds},                        "quit SECONDS"},
    {"exit",        kExit,        0, {},                                   "exit"},
    {"sim",         kSim,         0, {readState},                          "sim menu|running"},
    {"pause",       kPause,       0, {readSwitch},                         "pause on|off"},
    {"stutter",     kStutter,     0, {readSeconds},                        "stutter SECONDS"},
    {"deaf",        kDeaf,        0, {readSeconds},                        "deaf SECONDS"},
    {"flood",       kFlood,       0, {readSeconds},                        "flood SECONDS"},
    {"aircraft",    kLoad,        0, {readName},                           "aircraft twin|glider"},
    {"personality", kCharacter,   0, {readName},                           "personality NAME"},
    {"event",       kEvent,       0, {readName, readNumber},               "event KEY_EVENT NUMBER"},
};
// clang-format on

constexpr std::span<const ActionRow<Action>> kRows(kActions);

}  // namespace

bool parseAction(std::string_view line, Action& action, std::string& error) {
    return readAction(kRows, splitWords(line), action, error);
}

bool parseScript(std::string_view text, std::vector<TimedAction>& script, std::string& error) {
    return readScript(kRows, text, script, error);
}

std::string actionUsage() {
    return usageOf(kRows);
}

}  // namespace standin
