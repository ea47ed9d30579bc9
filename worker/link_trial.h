// link_trial.h - one try of the simulator link, for a report: what would the worker say just now?
#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>
#include "base/clock.h"
#include "worker/sim_link.h"

// Longer than a link takes to find out: 10 s for a name, 2 s for each of its addresses, 5 s for each of the three
// versions of the introduction. Only a name with more than seven dead addresses may take longer.
inline constexpr std::uint64_t kLinkTrialMs = 40'000;

struct LinkTrial {
    bool isUp = false;
    std::string status;              // the link's own, as telemetry.json would carry it
    std::uint64_t ms = 0;            // how long it took, or was tried for
    std::vector<std::string> notes;  // what the worker would have logged
};

// Polls the link until it is up or has found out why not, for kLinkTrialMs at most; pause is called between two polls.
LinkTrial tryLink(SimLink& link, const Clock& clock, const std::function<void()>& pause);
