// personality.h - the simulators and aircraft that a client may meet, by name. A row says what differs from stock.
#pragma once
#include <cstdint>
#include <string_view>
#include "tests/simulator/aircraft.h"
#include "tests/simulator/answers.h"

namespace standin {

// What happens when a client writes to a radio.
enum class OnWrite : std::uint8_t { kApplies, kQuits, kCrashes };

struct Personality {
    std::string_view name;
    const Edition* edition = &kEdition2020;
    std::uint32_t oldestProtocol = 2;  // the newest is the edition's own
    Habits habits{};
    std::uint32_t writeDelayMs = 0;  // until the effect of a write shows
    OnWrite onWrite = OnWrite::kApplies;
    bool isRough = false;          // packets cut, joined, and mixed with unknown and very long ones
    bool freezesInPause = false;   // sends no changes and carries out no key event until the pause is over
    bool lacksPauseKinds = false;  // knows Pause, but not Pause_EX1
    bool isSilent = false;         // takes everything and answers nothing
    bool talksGarbage = false;     // answers Open with noise
    std::string_view script = "";  // counted from the first client's Open (script.h)
};

// Null for an unknown name.
const Personality* findPersonality(std::string_view name);

// All names, for a usage text: one per line.
const Personality* personalitiesBegin();
const Personality* personalitiesEnd();

}  // namespace standin
