#include "worker/make_link.h"
#include "worker/simconnect/simconnect_link.h"
#include "worker/simulated_aircraft.h"

namespace {

void logProblems(const FlightScript& script, WorkerLog& log) {
    for (const auto& problem : script.problems) {
        log.line(problem.line == 0 ? "script refused: " + problem.reason
                                   : "script line " + std::to_string(problem.line) + " skipped: " + problem.reason);
    }
    if (script.moreProblems > 0) log.line("script: " + std::to_string(script.moreProblems) + " more lines skipped");
}

FlightScript loadScript(const std::string& path, DataFiles& files, WorkerFolder& folder, WorkerLog& log) {
    constexpr const char* kStandsStill = "; the aircraft stands still";
    if (path.empty()) return {};
    const auto stamp = folder.stamp(path);
    if (stamp.bytes > kMaxScriptBytes) {  // asked first, so that no huge file is read only to be refused
        log.line("script " + path + " is larger than 1 MB" + kStandsStill);
        return {};
    }
    std::string text;
    if (!stamp.exists || !files.read(path, text)) {
        log.line("script " + path + (stamp.exists ? " cannot be read" : " not found") + kStandsStill);
        return {};
    }
    auto script = parseFlightScript(text);
    log.line("script " + path + ": " + std::to_string(script.steps.size()) + " actions");
    logProblems(script, log);
    return script;
}

}  // namespace

std::unique_ptr<SimLink> makeLink(const WorkerOptions& options, DataFiles& files, WorkerFolder& folder, WorkerLog& log,
                                  const MakeTransport& makeTransport, std::uint64_t nowMs) {
    if (options.link.value_or(LinkKind::kAuto) == LinkKind::kAuto) {
        return std::make_unique<simconnect::SimConnectLink>(makeTransport(options.address));
    }
    return std::make_unique<SimulatedAircraft>(loadScript(options.script, files, folder, log), nowMs);
}
