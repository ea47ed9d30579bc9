// beacon_watch.h - which of the X-Planes that can be heard is ours: one that flies itself (no external visual, no
// instructor's station), on this computer before any other, else the one heard first.
#pragma once
#include <cstdint>
#include <optional>
#include <vector>
#include "worker/sim_link.h"
#include "worker/xplane/datagrams.h"
#include "worker/xplane/packets.h"

namespace xplane {

inline constexpr std::uint64_t kBeaconMs = 1'000;    // from one beacon to the next, about
inline constexpr std::uint64_t kBeaconLookMs = 500;  // from one look for beacons to the next: each is a system call
// One on another computer must wait until one on this computer would have been heard.
inline constexpr std::uint64_t kListenFirstMs = kBeaconMs + kBeaconLookMs + 100;
// Two beacons in a row may be lost. Less than kFreshMs: when an X-Plane ends, its last beacon may be read late, and its
// silence is to be that of one that is gone as soon as its values count as old.
inline constexpr std::uint64_t kBeaconSilenceMs = kFreshMs - kBeaconLookMs;
inline constexpr std::size_t kMostHeard = 32;  // more masters on one network are not kept

// An X-Plane that can be asked.
struct Simulator {
    Endpoint at;
    std::int32_t version = 0;  // 0: not known
    bool isHere = false;       // on this computer
    bool operator==(const Simulator&) const = default;
};

class BeaconWatch {
  public:
    // Listening begins.
    explicit BeaconWatch(std::uint64_t nowMs) : sinceMs_(nowMs) {}

    void hear(const Beacon& beacon, std::uint32_t sender, bool isHere, std::uint64_t nowMs);

    // dataMs: when the present choice last said anything of its radios, if it has; that too keeps it.
    void choose(std::optional<std::uint64_t> dataMs, std::uint64_t nowMs);

    const std::optional<Simulator>& chosen() const { return chosen_; }
    std::uint64_t sinceMs() const { return sinceMs_; }

  private:
    struct Heard {
        Simulator simulator;
        std::uint64_t lastMs = 0;
    };

    std::uint64_t sinceMs_;
    std::vector<Heard> heard_;  // in the order in which they were first heard
    std::optional<Simulator> chosen_;
};

}  // namespace xplane
