// flight_script_fuzz.cpp - a flight script of any bytes, flown for a while, and worker.ini from the same bytes.
#include <cstdint>
#include <cstdlib>
#include "exchange/frequency_grid.h"
#include "worker/simulated_aircraft.h"
#include "worker/worker_options.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    WorkerOptions options;
    applyIni(text, options);

    SimulatedAircraft aircraft(parseFlightScript(text), 0);
    for (std::uint64_t ms = 0; ms < 100'000'000; ms = ms * 2 + 25) {
        aircraft.poll(ms);
        const auto& sim = aircraft.snapshot();
        for (std::size_t i = 0; sim.ok && i < sim.radios.size(); i++) {
            if (!isChannelOf(sim, i, sim.radios[i].active) || !isChannelOf(sim, i, sim.radios[i].standby)) std::abort();
        }
    }
    return 0;
}
