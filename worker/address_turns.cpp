#include "worker/address_turns.h"
#include <algorithm>
#include <utility>

void AddressTurns::begin(std::vector<NetAddress> addresses) {
    addresses_ = std::move(addresses);
    next_ = 0;
    const auto worked = worked_ ? std::find(addresses_.begin(), addresses_.end(), *worked_) : addresses_.end();
    if (worked != addresses_.end()) std::rotate(addresses_.begin(), worked, worked + 1);
}

std::optional<NetAddress> AddressTurns::next(std::uint64_t nowMs) {
    if (next_ == addresses_.size()) return std::nullopt;
    turnMs_ = nowMs;
    return addresses_[next_++];
}

void AddressTurns::noteWorks() {
    if (next_ > 0) worked_ = addresses_[next_ - 1];
}
