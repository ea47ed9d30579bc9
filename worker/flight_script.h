// flight_script.h - the timed actions that the built-in aircraft follows, read from a small text.
// A bad line is skipped and reported; nothing in a script can make the reader fail, hang or throw.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>
#include "worker/radio_types.h"

inline constexpr std::size_t kMaxScriptBytes = 1'000'000;  // a larger script is refused as a whole
inline constexpr std::size_t kMaxScriptSteps = 20'000;     // lines beyond are skipped
inline constexpr std::size_t kMaxScriptProblems = 20;      // reported one by one; the rest are only counted

enum class ScriptAction : std::uint8_t {
    kTune,      // radio, slot (active, standby), value kHz
    kSwap,      // radio
    kVolume,    // radio, value 0..1
    kPower,     // radio, value 0 or 1
    kSpacing,   // radio, value kSpacing25 or kSpacing833
    kWritable,  // radio, slot, value 0 or 1: what the aircraft says
    kObey,      // radio, slot, value 0 or 1: what the aircraft does
    kReadback,  // value ms, 0..10000
    kDrop,      // value ms without a link, 1..3600000
    kEnd,       // nothing after it happens
    kRepeat,    // the script starts over; the aircraft keeps its state
};

struct ScriptStep {
    std::uint64_t atMs = 0;  // since the aircraft started, 0..864000000 (ten days)
    std::size_t line = 0;    // in the script, from 1
    ScriptAction action = ScriptAction::kEnd;
    std::size_t radio = 0;
    RadioSlot slot = kSlotActive;
    double value = 0.0;
};

struct ScriptProblem {
    std::size_t line = 0;  // 0 = the script as a whole
    std::string reason;
};

struct FlightScript {
    std::vector<ScriptStep> steps;        // by time; equal times in the order written; at most one End or Repeat, last
    std::vector<ScriptProblem> problems;  // the first kMaxScriptProblems
    std::size_t moreProblems = 0;         // those beyond
};

FlightScript parseFlightScript(std::string_view text);
