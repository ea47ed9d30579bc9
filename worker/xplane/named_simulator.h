// named_simulator.h - the X-Plane on the computer that the pilot has named: looks the name up and tries its addresses
// one after the other. There is no beacon from another network, so only an answer says that it is there.
#pragma once
#include <optional>
#include <string>
#include "worker/address_turns.h"
#include "worker/host_lookup.h"
#include "worker/xplane/datagrams.h"

namespace xplane {

inline constexpr std::uint64_t kLookUpAgainMs = 10'000;  // after a lookup that has not led to an X-Plane

class NamedSimulator {
  public:
    explicit NamedSimulator(HostPort address, AddressLookUp lookUp = ::lookUp);

    // speaks: whether an X-Plane answers at the present address. Must not block.
    void poll(bool speaks, std::uint64_t nowMs);

    // Where to ask just now; nothing while no address is known.
    const std::optional<Endpoint>& present() const { return present_; }

    // Why there is none, in the words of pilot_texts.h; empty while that is not known.
    const std::string& problem() const { return problem_; }

  private:
    void lookAgain(std::uint64_t nowMs);
    void awaitAddresses(std::uint64_t nowMs);
    bool use(std::vector<NetAddress> addresses);
    bool takeNext(std::uint64_t nowMs);

    HostPort address_;
    AddressLookUp lookUp_;
    HostLookup lookup_;
    AddressTurns turns_;
    std::vector<NetAddress> found_;            // IPv4 only: X-Plane is not known to listen to anything else
    std::optional<std::uint64_t> lookedUpMs_;  // when the latest lookup began
    std::optional<Endpoint> present_;
    std::string problem_;
};

}  // namespace xplane
