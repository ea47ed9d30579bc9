// flight_script_fuzz.cpp - a flight script of any bytes, flown for a while, and worker.ini from the same bytes.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include "exchange/frequency_grid.h"
#include "tests/fuzz/text_mutator.h"
#include "worker/simulated_aircraft.h"
#include "worker/worker_options.h"

namespace {

constexpr std::string_view kSample =
    "0 tune COM1 active 122.800\n1.5 tune COM2 standby 118.005\n2 swap COM1\n3 volume COM2 30\n4 power COM1 off\n"
    "5 power COM1 on\n6 spacing COM2 8.33\n7 spacing COM1 25\n8 writable COM1 volume\n9 unwritable COM2 swap\n"
    "10 obey COM1 active\n11 ignore COM2 standby\n12 readback 500\n13 drop 2\n14 end\n15 repeat\n# remark\n";

// Steps that can be played in their order, and few words about the others.
void checkScript(const FlightScript& script, std::size_t lines) {
    if (script.problems.size() > kMaxScriptProblems || script.steps.size() > kMaxScriptSteps) std::abort();
    if (script.steps.size() + script.problems.size() + script.moreProblems > lines + 1) std::abort();
    for (std::size_t i = 0; i < script.steps.size(); i++) {
        const ScriptStep& step = script.steps[i];
        const bool isLast = step.action == ScriptAction::kEnd || step.action == ScriptAction::kRepeat;
        if (isLast && i + 1 != script.steps.size()) std::abort();
        if (step.radio >= kRadioCount || step.line < 1 || step.line > lines || step.atMs > 864'000'000) std::abort();
        if (i > 0 && step.atMs < script.steps[i - 1].atMs) std::abort();
    }
    for (const auto& problem : script.problems)
        if (problem.reason.empty() || problem.line > lines) std::abort();
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    static TextMutator mutator(kSample, "\n ");
    return mutator.mutate(data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    WorkerOptions options;
    applyIni(text, options);

    FlightScript script = parseFlightScript(text);
    checkScript(script, 1 + static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')));
    SimulatedAircraft aircraft(std::move(script), 0);
    for (std::uint64_t ms = 0; ms < 100'000'000; ms = ms * 2 + 25) {
        aircraft.poll(ms);
        const auto& sim = aircraft.snapshot();
        for (std::size_t i = 0; sim.ok && i < sim.radios.size(); i++) {
            if (!isChannelOf(sim, i, sim.radios[i].active) || !isChannelOf(sim, i, sim.radios[i].standby)) std::abort();
        }
    }
    return 0;
}
