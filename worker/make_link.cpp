#include "worker/make_link.h"
#include "worker/auto_link.h"
#include "worker/simconnect/simconnect_link.h"
#include "worker/simulated_aircraft.h"
#include "worker/xplane/xplane_link.h"

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
                                  const LinkWays& ways, std::uint64_t nowMs) {
    // The links under auto are made again and again, so what makes them keeps all that it needs.
    const MakeSimLink makeSimConnect = [makeTransport = ways.makeTransport, address = options.address] {
        return std::make_unique<simconnect::SimConnectLink>(makeTransport(address));
    };
    const auto makeXPlane = [makeDatagrams = ways.makeDatagrams,
                             beacon = options.beacon](const std::optional<HostPort>& address) {
        return std::make_unique<xplane::XPlaneLink>(makeDatagrams(beacon.value_or(xplane::kBeaconGroup)), address);
    };
    switch (options.link.value_or(LinkKind::kAuto)) {
        case LinkKind::kAuto:
            return std::make_unique<AutoLink>(std::array<AutoLink::Choice, 2>{
                {{"SimConnect", makeSimConnect}, {"X-Plane", [makeXPlane] { return makeXPlane(std::nullopt); }}}});
        case LinkKind::kSimConnect:
            return makeSimConnect();
        case LinkKind::kXPlane:
            return makeXPlane(options.address);
        case LinkKind::kSimulate:
            break;
    }
    return std::make_unique<SimulatedAircraft>(loadScript(options.script, files, folder, log), nowMs);
}
