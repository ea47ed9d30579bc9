// data_refs.h - X-Plane's names for what is in the cockpit: values that can be read and written, and commands.
#pragma once
#include <string_view>
#include "tests/xplane/cockpit.h"

namespace xstandin {

struct DataRef {
    std::string_view name;
    std::size_t radio;
    float (*read)(const Cockpit& cockpit, std::size_t radio);
    void (*write)(Cockpit& cockpit, const Habits& habits, std::size_t radio, float value);  // null: only read
};

struct Command {
    std::string_view name;
    std::size_t radio;
    void (*run)(Cockpit& cockpit, const Habits& habits, std::size_t radio);
};

// By its exact name; null if there is no such thing.
const DataRef* findDataRef(std::string_view name);
const Command* findCommand(std::string_view name);

}  // namespace xstandin
