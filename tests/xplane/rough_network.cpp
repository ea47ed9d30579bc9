#include "tests/xplane/rough_network.h"
#include <utility>

namespace xstandin {

std::string textOf(const Endpoint& endpoint) {
    std::string text;
    for (std::uint32_t shift = 32; shift > 0; shift -= 8)
        text += std::to_string(endpoint.address >> (shift - 8) & 0xFFU) + (shift > 8 ? '.' : ':');
    return text + std::to_string(endpoint.port);
}

// A linear congruential generator (Numerical Recipes); its upper bits are the good ones.
bool RoughNetwork::happens(std::uint32_t percent) {
    state_ = state_ * 1'664'525U + 1'013'904'223U;
    return (state_ >> 8U) % 100 < percent;
}

std::vector<Datagram> RoughNetwork::carry(std::vector<Datagram> sent, const Roughness& roughness, std::uint64_t nowMs) {
    auto held = std::exchange(late_, {});
    std::vector<Datagram> arrived;
    for (auto& datagram : sent) {
        if (happens(roughness.lost)) continue;
        const bool isDoubled = happens(roughness.doubled);
        if (happens(roughness.late)) {
            late_.push_back({std::move(datagram), nowMs + kLateMs});
            continue;
        }
        if (isDoubled) arrived.push_back(datagram);
        arrived.push_back(std::move(datagram));
    }
    const bool areOvertaken = !arrived.empty();
    for (auto& late : held) {
        if (areOvertaken || late.dueMs <= nowMs)
            arrived.push_back(std::move(late.datagram));
        else
            late_.push_back(std::move(late));
    }
    return arrived;
}

}  // namespace xstandin
