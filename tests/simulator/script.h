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
    Tune,       // radio, slot, value Hz
    Swap,       // radio
    Volume,     // radio, value percent
    Power,      // radio, value 0 or 1
    Spacing,    // radio, value 1 for 8.33
    Obey,       // radio, slot, value 0 or 1
    Readback,   // value ms until a write shows
    Drop,       // value ms without a connection; nobody is told
    Crash,      // the same, in the middle of a packet
    Quit,       // the same, told
    Exit,       // for good
    Sim,        // value 0 menu, 1 running
    Pause,      // value 0 or 1
    Load,       // text: an aircraft's name
    Character,  // text: its name
    Event,      // text: a key event pressed in the cockpit; value its number
};

struct Action {
    ActionKind kind = ActionKind::Exit;
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

// Lines of "SECONDS ACTION"; # begins a remark. In time's order. Stops at the first bad line: false, error names it.
bool parseScript(std::string_view text, std::vector<TimedAction>& script, std::string& error);

// The actions, one usage a line.
std::string actionUsage();

}  // namespace standin
