// script.h - what happens in the simulator, as lines of text: SECONDS ACTION in a flight script, ACTION alone from
// somebody at the controls. The radio actions are those of the worker's built-in aircraft, so one script flies both.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>
#include "tests/simulator/aircraft.h"

namespace standin {

enum class ActionKind : std::uint8_t {
    kTune,       // radio, slot, value Hz
    kSwap,       // radio
    kVolume,     // radio, value percent
    kPower,      // radio, value 0 or 1
    kSpacing,    // radio, value 1 for 8.33
    kObey,       // radio, slot, value 0 or 1
    kReadback,   // value ms until a write shows
    kDrop,       // value ms without a connection; clients are not told
    kCrash,      // the same, in the middle of a packet
    kQuit,       // the same, but clients are told
    kExit,       // for good
    kSim,        // value 0 menu, 1 running
    kPause,      // value 0 or 1
    kStutter,    // value ms without a frame; what clients send waits
    kDeaf,       // value ms in which nothing is read of what clients send
    kFlood,      // value ms in which the aircraft is reported as loaded over a thousand times a second
    kLoad,       // text: an aircraft's name
    kCharacter,  // text: its name
    kEvent,      // text: a key event pressed in the cockpit; value its number
};

struct Action {
    ActionKind kind = ActionKind::kExit;
    std::size_t radio = 0;
    Slot slot = kActive;
    double value = 0.0;
    std::string text;
};

struct TimedAction {
    std::uint64_t atMs = 0;
    Action action;
};

// "tune COM1 active 122.800". False with the reason in error.
bool parseAction(std::string_view line, Action& action, std::string& error);

// Lines of "SECONDS ACTION"; # begins a remark. Sorted by time. Stops at the first bad line: false, error names it.
bool parseScript(std::string_view text, std::vector<TimedAction>& script, std::string& error);

// The actions, one usage per line.
std::string actionUsage();

}  // namespace standin
