// personality.h - the X-Planes, aircraft and networks that a client may meet, by name. A row says what differs from
// version 12 on a good day.
#pragma once
#include <cstdint>
#include <string_view>
#include "tests/xplane/cockpit.h"
#include "tests/xplane/rough_network.h"

namespace xstandin {

// What happens when a client writes.
enum class OnWrite : std::uint8_t { kApplies, kCrashes, kIsRedrawn };

struct Personality {
    std::string_view name;
    std::int32_t version = 122015;  // 12.2.0
    std::int32_t versionAfter = 0;  // once it has ended and come back; 0 = the same
    std::uint8_t beaconMinor = 2;   // 1 before late 11
    std::int32_t program = 1;       // 2 Plane Maker
    std::int32_t role = 1;          // 1 master, 2 external visual, 3 instructor
    char fifthByte = ',';           // of an answer
    bool takesConnections = true;   // the switch in its network settings; else nothing is answered
    std::string_view lacks = "";    // names with this in them do not exist
    bool answersZero = false;       // about such names, else nothing
    Habits habits{};
    OnWrite onWrite = OnWrite::kApplies;
    std::uint32_t writeDelayMs = 0;  // until the effect of a write shows
    bool freezesInPause = false;     // writes wait until the pause is over
    Roughness roughness{};           // of the network, both ways
    bool isOdd = false;              // each frame brings one of the oddities, each beacon all of its own
    std::uint32_t framesPerSecond = 30;
    std::string_view script = "";  // counted from the first client's first request (script.h)
};

// Null for an unknown name.
const Personality* findPersonality(std::string_view name);

// All of them, for usage texts and for tests that walk them.
const Personality* personalitiesBegin();
const Personality* personalitiesEnd();

}  // namespace xstandin
