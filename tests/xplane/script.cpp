#include "tests/xplane/script.h"
#include <charconv>
#include <cmath>
#include "tests/simulator/script_words.h"
#include "tests/xplane/oddities.h"

namespace xstandin {

using standin::parseNumber;
using standin::parseOneOf;

namespace {

bool readRadio(std::string_view word, Action& action) {
    double place = 0.0;
    if (!parseOneOf(word, {"COM1", "COM2"}, place)) return false;
    action.radio = static_cast<std::size_t>(place);
    return true;
}

bool readSlot(std::string_view word, Action& action) {
    double place = 0.0;
    if (!parseOneOf(word, kSlotWords, place)) return false;
    action.slot = static_cast<std::size_t>(place);
    return true;
}

bool readOddity(std::string_view word, Action& action) {
    double place = 0.0;
    if (!parseOneOf(word, kOddityWords, place)) return false;
    action.slot = static_cast<std::size_t>(place);
    return true;
}

bool readMegahertz(std::string_view word, Action& action) {
    if (action.slot != kActive && action.slot != kStandby) return false;
    if (!parseNumber(word, action.value)) return false;
    action.value = std::round(action.value * 1000.0);
    return true;
}

bool readNumber(std::string_view word, Action& action) {
    return parseNumber(word, action.value);
}

bool readPercent(std::string_view word, Action& action) {
    return parseNumber(word, action.value) && action.value <= 100.0;
}

bool readSeconds(std::string_view word, Action& action) {
    if (!parseNumber(word, action.value)) return false;
    action.value *= 1000.0;
    return true;
}

// Whatever a float can hold: also "-1", "nan", "inf".
bool readAnyFloat(std::string_view word, Action& action) {
    const auto [stop, error] = std::from_chars(word.data(), word.data() + word.size(), action.value);
    return error == std::errc{} && stop == word.data() + word.size();
}

bool readSwitch(std::string_view word, Action& action) {
    return parseOneOf(word, {"off", "on"}, action.value);
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
const standin::ActionRow<Action> kActions[] = {
    {"tune",        kTune,       0, {readRadio, readSlot, readMegahertz}, "tune COM1|COM2 active|standby MHZ"},
    {"swap",        kSwap,       0, {readRadio},                          "swap COM1|COM2"},
    {"volume",      kVolume,     0, {readRadio, readPercent},             "volume COM1|COM2 PERCENT"},
    {"power",       kPower,      0, {readRadio, readSwitch},              "power COM1|COM2 on|off"},
    {"obey",        kObey,       1, {readRadio, readSlot},                "obey COM1|COM2 SLOT"},
    {"ignore",      kObey,       0, {readRadio, readSlot},                "ignore COM1|COM2 SLOT"},
    {"avionics",    kAvionics,   0, {readSwitch},                         "avionics on|off"},
    {"transmit",    kTransmit,   0, {readRadio},                          "transmit COM1|COM2"},
    {"show",        kShow,       0, {readName, readAnyFloat},             "show NAME NUMBER"},
    {"readback",    kReadback,   0, {readNumber},                         "readback MILLISECONDS"},
    {"drop",        kDrop,       0, {readSeconds},                        "drop SECONDS"},
    {"crash",       kCrash,      0, {readSeconds},                        "crash SECONDS"},
    {"quit",        kQuit,       0, {readSeconds},                        "quit SECONDS"},
    {"exit",        kExit,       0, {},                                   "exit"},
    {"sim",         kSim,        0, {readState},                          "sim menu|running"},
    {"pause",       kPause,      0, {readSwitch},                         "pause on|off"},
    {"stutter",     kStutter,    0, {readSeconds},                        "stutter SECONDS"},
    {"network",     kNetwork,    0, {readSwitch},                         "network on|off"},
    {"beacon",      kBeacon,     0, {readSwitch},                         "beacon on|off"},
    {"version",     kVersion,    0, {readNumber},                         "version NUMBER"},
    {"lose",        kLose,       0, {readPercent},                        "lose PERCENT"},
    {"double",      kDouble,     0, {readPercent},                        "double PERCENT"},
    {"delay",       kDelay,      0, {readPercent},                        "delay PERCENT"},
    {"odd",         kOdd,        0, {readOddity, readSeconds},
     "odd nan|infinity|half|foreign|stranger|noise|empty|long SECONDS"},
    {"personality", kCharacter,  0, {readName},                           "personality NAME"},
};
// clang-format on

constexpr std::span<const standin::ActionRow<Action>> kRows(kActions);

}  // namespace

bool parseAction(std::string_view line, Action& action, std::string& error) {
    return standin::readAction(kRows, standin::splitWords(line), action, error);
}

bool parseScript(std::string_view text, std::vector<TimedAction>& script, std::string& error) {
    return standin::readScript(kRows, text, script, error);
}

std::string actionUsage() {
    return standin::usageOf(kRows);
}

}  // namespace xstandin
