#include "tests/simulator/script.h"
#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include "tests/simulator/wire.h"

namespace standin {

namespace {

using Words = std::vector<std::string_view>;

Words splitWords(std::string_view line) {
    constexpr std::string_view kBlanks = " \t\r";
    Words words;
    for (auto start = line.find_first_not_of(kBlanks); start != std::string_view::npos;
         start = line.find_first_not_of(kBlanks)) {
        line.remove_prefix(start);
        const auto end = std::min(line.find_first_of(kBlanks), line.size());
        words.push_back(line.substr(0, end));
        line.remove_prefix(end);
    }
    return words;
}

bool parseNumber(std::string_view word, double& value) {
    const auto* end = word.data() + word.size();
    double number = 0.0;
    const auto [stop, error] = std::from_chars(word.data(), end, number, std::chars_format::fixed);
    if (error != std::errc{} || stop != end || !(number >= 0.0 && number <= 1e9)) return false;
    value = number;
    return true;
}

// What one word of an action means. False if the word is not of that kind.
using ReadWord = bool (*)(std::string_view word, Action& action);

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

template <std::size_t N>
bool readOneOf(std::string_view word, const std::string_view (&names)[N], Action& action) {
    const auto* name = std::find_if(names, names + N, [&](std::string_view row) { return isSameName(row, word); });
    action.value = static_cast<double>(name - names);
    return name != names + N;
}

bool readSwitch(std::string_view word, Action& action) {
    return readOneOf(word, {"off", "on"}, action);
}

bool readSpacing(std::string_view word, Action& action) {
    return readOneOf(word, {"25", "8.33"}, action);
}

bool readState(std::string_view word, Action& action) {
    return readOneOf(word, {"menu", "running"}, action);
}

bool readName(std::string_view word, Action& action) {
    action.text = word;
    return true;
}

struct ActionRow {
    std::string_view word;
    ActionKind kind;
    double value;  // unless a word says otherwise
    std::vector<ReadWord> rest;
    std::string_view usage;
};

using enum ActionKind;

// clang-format off
const ActionRow kActions[] = {
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

bool parseWords(const Words& words, Action& action, std::string& error) {
    const auto* row = words.empty()
                          ? std::end(kActions)
                          : std::find_if(std::begin(kActions), std::end(kActions),
                                         [&](const ActionRow& known) { return isSameName(known.word, words[0]); });
    if (row == std::end(kActions)) {
        error = "no such action";
        return false;
    }
    Action read{row->kind, 0, kActive, row->value, ""};
    bool isGood = words.size() == row->rest.size() + 1;
    for (std::size_t i = 0; isGood && i < row->rest.size(); i++) isGood = row->rest[i](words[i + 1], read);
    if (isGood)
        action = read;
    else
        error = "expected: " + std::string(row->usage);
    return isGood;
}

}  // namespace

bool parseAction(std::string_view line, Action& action, std::string& error) {
    return parseWords(splitWords(line), action, error);
}

bool parseScript(std::string_view text, std::vector<TimedAction>& script, std::string& error) {
    script.clear();
    for (int number = 1; !text.empty(); number++) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        auto words = splitWords(line.substr(0, line.find('#')));
        if (words.empty()) continue;
        double seconds = 0.0;
        TimedAction step;
        bool isGood = parseNumber(words[0], seconds);
        if (!isGood) error = "the line does not begin with seconds";
        words.erase(words.begin());
        isGood = isGood && parseWords(words, step.action, error);
        if (!isGood) {
            error = "line " + std::to_string(number) + ": " + error;
            return false;
        }
        step.atMs = static_cast<std::uint64_t>(std::llround(seconds * 1000.0));
        script.push_back(std::move(step));
    }
    std::stable_sort(script.begin(), script.end(),
                     [](const TimedAction& a, const TimedAction& b) { return a.atMs < b.atMs; });
    return true;
}

std::string actionUsage() {
    std::string text;
    for (const auto& row : kActions) text.append("  ").append(row.usage).append("\n");
    return text;
}

}  // namespace standin
