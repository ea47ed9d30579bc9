// key_events.h - the events by which clients and the cockpit work the radios. [any thread]
#pragma once
#include <cstdint>
#include <string_view>
#include "tests/simulator/aircraft.h"

namespace standin {

struct KeyEvent {
    std::string_view name;
    std::size_t radio;
    // False if it had no effect.
    bool (*apply)(Aircraft& aircraft, const Habits& habits, std::size_t radio, std::uint32_t data);
};

// Null for a name that the simulator does not know.
const KeyEvent* findKeyEvent(std::string_view name);

}  // namespace standin
