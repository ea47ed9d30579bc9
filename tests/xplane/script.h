// script.h - what happens in X-Plane and on its network, as lines of text: SECONDS ACTION in a flight script, ACTION
// alone from somebody at the controls. The radio actions are those of the other aircraft, so one script flies all.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>
#include "tests/xplane/cockpit.h"

namespace xstandin {

enum class ActionKind : std::uint8_t {
    kTune,       // radio, slot, value kHz
    kSwap,       // radio
    kVolume,     // radio, value percent
    kPower,      // radio, value 0 or 1
    kObey,       // radio, slot, value 0 or 1
    kAvionics,   // value 0 or 1
    kTransmit,   // radio
    kShow,       // text: a name; value, any float: what it is said to be from now on
    kReadback,   // value ms until a write shows
    kDrop,       // value ms in which no datagram arrives anywhere
    kCrash,      // value ms until it is started again; its requests are forgotten
    kQuit,       // the same, without half an answer at the end
    kExit,       // for good
    kSim,        // value 0 menu, 1 running
    kPause,      // value 0 or 1
    kStutter,    // value ms without a frame or a beacon; what clients send waits
    kNetwork,    // value 0 or 1: the switch in its settings
    kBeacon,     // value 0 or 1: whether it announces itself
    kVersion,    // value, such as 122015
    kLose,       // value percent of all datagrams
    kDouble,     // the same
    kDelay,      // the same
    kOdd,        // slot: which oddity; value ms for which it comes beside the truth
    kCharacter,  // text: a personality's name
};

struct Action {
    ActionKind kind = ActionKind::kExit;
    std::size_t radio = 0;
    std::size_t slot = 0;
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

}  // namespace xstandin
