#include "worker/flight_script.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>
#include "base/ascii_text.h"
#include "base/number_text.h"
#include "base/utf8.h"
#include "exchange/frequency_grid.h"

namespace {

constexpr std::size_t kMaxLineBytes = 200;
constexpr std::size_t kMaxWords = 5;  // SECONDS tune COM1 active 122.800
constexpr double kMaxSeconds = 864'000.0;

struct Words {
    std::array<std::string, kMaxWords> word;  // lower case
    std::size_t count = 0;                    // kMaxWords + 1: more than any action has
};

Words splitWords(std::string_view line) {
    Words words;
    constexpr std::string_view kBlanks = " \t";
    while (true) {
        const auto start = line.find_first_not_of(kBlanks);
        if (start == std::string_view::npos) return words;
        const auto end = std::min(line.find_first_of(kBlanks, start), line.size());
        if (words.count == kMaxWords) {
            words.count++;
            return words;
        }
        auto& word = words.word[words.count++];
        std::transform(line.begin() + static_cast<std::ptrdiff_t>(start),
                       line.begin() + static_cast<std::ptrdiff_t>(end), std::back_inserter(word), lowerAscii);
        line.remove_prefix(end);
    }
}

// Digits with at most one point between them: no sign, exponent, "inf" or trailing unit.
bool parseDecimal(const std::string& word, double min, double max, double& value) {
    const bool plain = word.find_first_not_of("0123456789.") == std::string::npos &&
                       std::count(word.begin(), word.end(), '.') <= 1 && !word.empty() && word.front() != '.' &&
                       word.back() != '.';
    if (!plain) return false;
    const double number = leadingDouble(word);
    if (!(number >= min && number <= max)) return false;
    value = number;
    return true;
}

bool parseRadio(const std::string& word, std::size_t& radio) {
    if (word != "com1" && word != "com2") return false;
    radio = word == "com1" ? 0 : 1;
    return true;
}

using Reason = std::string;  // empty: the line is good
const Reason kGood;

Reason readTune(const Words& words, ScriptStep& step) {
    const bool tunable = parseSlot(words.word[3], step.slot) && (step.slot == kSlotActive || step.slot == kSlotStandby);
    if (!tunable) return "tune needs active or standby";
    double mhz = 0.0;
    if (!parseDecimal(words.word[4], 118.0, 137.0, mhz)) return "the frequency is not between 118.000 and 136.990 MHz";
    step.value = std::round(mhz * 1000.0);
    const bool channel = std::abs(mhz * 1000.0 - step.value) < 1e-6 && step.value <= kBandMaxKHz &&
                         isOnGrid(static_cast<std::int32_t>(step.value), kSpacing833);
    return channel ? kGood : "the frequency is not a channel of a COM radio";
}

Reason readNothingMore(const Words&, ScriptStep&) {
    return kGood;
}

Reason readVolume(const Words& words, ScriptStep& step) {
    if (!parseDecimal(words.word[3], 0.0, 100.0, step.value)) return "the volume is not between 0 and 100 percent";
    step.value /= 100.0;
    return kGood;
}

Reason readPower(const Words& words, ScriptStep& step) {
    step.value = words.word[3] == "on" ? 1.0 : 0.0;
    return step.value == 1.0 || words.word[3] == "off" ? kGood : "power needs on or off";
}

Reason readSpacing(const Words& words, ScriptStep& step) {
    step.value = words.word[3] == "8.33" ? kSpacing833 : kSpacing25;
    return step.value == kSpacing833 || words.word[3] == "25" ? kGood : "spacing needs 25 or 8.33";
}

Reason readSlot(const Words& words, ScriptStep& step) {
    return parseSlot(words.word[3], step.slot) ? kGood : "the slot is not active, standby, volume or swap";
}

Reason readSlotOn(const Words& words, ScriptStep& step) {
    step.value = 1.0;
    return readSlot(words, step);
}

Reason readReadback(const Words& words, ScriptStep& step) {
    return parseDecimal(words.word[2], 0.0, 10'000.0, step.value) ? kGood : "readback needs 0 to 10000 milliseconds";
}

Reason readDrop(const Words& words, ScriptStep& step) {
    if (!parseDecimal(words.word[2], 0.001, 3600.0, step.value)) return "drop needs 0.001 to 3600 seconds";
    step.value = std::round(step.value * 1000.0);
    return kGood;
}

Reason readRepeat(const Words&, ScriptStep& step) {
    return step.atMs >= 100 ? kGood : "repeat needs a time of at least 0.1 seconds";
}

struct ActionRow {
    std::string_view name;
    ScriptAction action;
    std::size_t wordCount;  // with the seconds
    bool hasRadio;          // the third word is COM1 or COM2
    Reason (*read)(const Words&, ScriptStep&);
    std::string_view usage;
};

// clang-format off
constexpr ActionRow kActions[] = {
    {"tune",       ScriptAction::kTune,     5, true,  readTune,        "SECONDS tune COM1|COM2 active|standby MHZ"},
    {"swap",       ScriptAction::kSwap,     3, true,  readNothingMore, "SECONDS swap COM1|COM2"},
    {"volume",     ScriptAction::kVolume,   4, true,  readVolume,      "SECONDS volume COM1|COM2 PERCENT"},
    {"power",      ScriptAction::kPower,    4, true,  readPower,       "SECONDS power COM1|COM2 on|off"},
    {"spacing",    ScriptAction::kSpacing,  4, true,  readSpacing,     "SECONDS spacing COM1|COM2 25|8.33"},
    {"writable",   ScriptAction::kWritable, 4, true,  readSlotOn,      "SECONDS writable COM1|COM2 SLOT"},
    {"unwritable", ScriptAction::kWritable, 4, true,  readSlot,        "SECONDS unwritable COM1|COM2 SLOT"},
    {"obey",       ScriptAction::kObey,     4, true,  readSlotOn,      "SECONDS obey COM1|COM2 SLOT"},
    {"ignore",     ScriptAction::kObey,     4, true,  readSlot,        "SECONDS ignore COM1|COM2 SLOT"},
    {"readback",   ScriptAction::kReadback, 3, false, readReadback,    "SECONDS readback MILLISECONDS"},
    {"drop",       ScriptAction::kDrop,     3, false, readDrop,        "SECONDS drop SECONDS"},
    {"end",        ScriptAction::kEnd,      2, false, readNothingMore, "SECONDS end"},
    {"repeat",     ScriptAction::kRepeat,   2, false, readRepeat,      "SECONDS repeat"},
};
// clang-format on

Reason readStep(const Words& words, ScriptStep& step) {
    double seconds = 0.0;
    if (!parseDecimal(words.word[0], 0.0, kMaxSeconds, seconds))
        return "the line does not begin with seconds, 0 to 864000";
    step.atMs = static_cast<std::uint64_t>(std::llround(seconds * 1000.0));
    const auto row = std::find_if(std::begin(kActions), std::end(kActions),
                                  [&](const ActionRow& action) { return action.name == words.word[1]; });
    if (row == std::end(kActions)) return "no such action";
    if (words.count != row->wordCount) return "expected: " + std::string(row->usage);
    if (row->hasRadio && !parseRadio(words.word[2], step.radio)) return "the radio is not COM1 or COM2";
    step.action = row->action;
    return row->read(words, step);
}

void addProblem(FlightScript& script, std::size_t line, Reason reason) {
    if (script.problems.size() == kMaxScriptProblems) {
        script.moreProblems++;
        return;
    }
    script.problems.push_back({line, std::move(reason)});
}

void readLine(FlightScript& script, std::size_t number, std::string_view line) {
    line = line.substr(0, line.find('#'));
    if (line.size() > kMaxLineBytes) return addProblem(script, number, "the line is too long");
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    const auto words = splitWords(line);
    if (words.count == 0) return;
    ScriptStep step;
    step.line = number;
    auto reason = readStep(words, step);
    if (!reason.empty()) return addProblem(script, number, std::move(reason));
    if (script.steps.size() == kMaxScriptSteps) return addProblem(script, number, "the script has too many actions");
    script.steps.push_back(step);
}

bool endsScript(const ScriptStep& step) {
    return step.action == ScriptAction::kEnd || step.action == ScriptAction::kRepeat;
}

}  // namespace

FlightScript parseFlightScript(std::string_view text) {
    FlightScript script;
    if (text.size() > kMaxScriptBytes || text.find('\0') != std::string_view::npos) {
        addProblem(script, 0,
                   text.size() > kMaxScriptBytes ? "the script is larger than 1 MB" : "this is not a text file");
        return script;
    }
    text = withoutUtf8Mark(text);
    for (std::size_t number = 1; !text.empty(); number++) {
        const auto newline = text.find('\n');
        readLine(script, number, text.substr(0, newline));
        text = newline == std::string_view::npos ? std::string_view() : text.substr(newline + 1);
    }
    auto& steps = script.steps;
    std::stable_sort(steps.begin(), steps.end(),
                     [](const ScriptStep& a, const ScriptStep& b) { return a.atMs < b.atMs; });
    const auto last = std::find_if(steps.begin(), steps.end(), endsScript);
    if (last != steps.end()) steps.erase(last + 1, steps.end());
    return script;
}
