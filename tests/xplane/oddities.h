// oddities.h - what a client must pass over: datagrams that say nothing true, beside those that do.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>
#include "tests/xplane/datagrams.h"
#include "tests/xplane/rough_network.h"

namespace xstandin {

enum class Oddity : std::uint8_t {
    kNan,       // no numbers for what was asked
    kInfinity,  // the same, without end
    kHalf,      // the truth, cut within a pair
    kForeign,   // values for what nobody asked for
    kStranger,  // other frequencies, from another address
    kNoise,     // another head
    kEmpty,     // nothing at all
    kLong,      // 60 KB of foreign values
};
inline constexpr std::string_view kOddityWords[] = {"nan",      "infinity", "half",  "foreign",
                                                    "stranger", "noise",    "empty", "long"};

// To peer, who would be told these readings now (at least one).
Datagram oddAnswer(Oddity oddity, const Endpoint& peer, const std::vector<Reading>& readings, char fifthByte);

// Beacons that announce nobody: cut, foreign, of Plane Maker, without a port.
std::vector<std::string> oddBeacons(const Beacon& beacon);

}  // namespace xstandin
