#include "worker/xplane/beacon_watch.h"
#include <algorithm>

namespace xplane {

void BeaconWatch::hear(const Beacon& beacon, std::uint32_t sender, bool isHere, std::uint64_t nowMs) {
    if (beacon.program != kProgramXPlane || beacon.role != kRoleMaster) return;
    const Endpoint at{sender, beacon.port};
    const auto known =
        std::find_if(heard_.begin(), heard_.end(), [&](const Heard& heard) { return heard.simulator.at == at; });
    if (known != heard_.end()) {
        *known = {{at, beacon.version, isHere}, nowMs};
    } else if (heard_.size() < kMostHeard) {
        heard_.push_back({{at, beacon.version, isHere}, nowMs});
    } else if (isHere) {
        heard_.back() = {{at, beacon.version, isHere}, nowMs};
    }
}

void BeaconWatch::choose(std::optional<std::uint64_t> dataMs, std::uint64_t nowMs) {
    const bool speaks = chosen_ && dataMs && nowMs - *dataMs < kFreshMs;
    std::erase_if(heard_, [&](const Heard& heard) {
        const bool isKept = speaks && heard.simulator.at == chosen_->at;
        return nowMs - heard.lastMs >= kBeaconSilenceMs && !isKept;
    });
    const auto find = [&](auto&& wanted) -> std::optional<Simulator> {
        const auto found = std::find_if(heard_.begin(), heard_.end(), wanted);
        return found != heard_.end() ? std::optional(found->simulator) : std::nullopt;
    };
    const auto present = find([&](const Heard& heard) { return chosen_ && heard.simulator.at == chosen_->at; });
    const auto here = find([](const Heard& heard) { return heard.simulator.isHere; });
    const auto first = find([](const Heard&) { return true; });
    if (present && (present->isHere || !here)) {
        chosen_ = present;  // perhaps of another version by now
    } else if (here || nowMs - sinceMs_ >= kListenFirstMs) {
        chosen_ = here ? here : first;
    } else {
        chosen_.reset();
    }
}

}  // namespace xplane
