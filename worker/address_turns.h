// address_turns.h - the addresses of the simulator's computer, tried one after the other: which is next, and for how
// long. A name often has several of which only one leads to the simulator, and a dead one need not say so.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>
#include "worker/net_address.h"

inline constexpr std::uint64_t kAddressLimitMs = 2'000;  // a computer that is there answers well within it

class AddressTurns {
  public:
    // From now on these, in this order; but the one that worked last before all others, if it is among them.
    void begin(std::vector<NetAddress> addresses);

    // The next one, whose time begins at nowMs; nothing after the last.
    std::optional<NetAddress> next(std::uint64_t nowMs);

    bool isBegun() const { return next_ > 0; }
    // The present one has had its time.
    bool isOver(std::uint64_t nowMs) const { return nowMs - turnMs_ >= kAddressLimitMs; }

    // The present one leads to a simulator.
    void noteWorks();

  private:
    std::vector<NetAddress> addresses_;
    std::size_t next_ = 0;
    std::uint64_t turnMs_ = 0;  // when the present one's began
    std::optional<NetAddress> worked_;
};
