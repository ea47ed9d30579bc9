#include "tests/simulator/rough_line.h"
#include <algorithm>
#include <utility>
#include "tests/simulator/answers.h"

namespace standin {

namespace {

constexpr std::uint32_t kLongId = 77;            // of the one long packet
constexpr std::size_t kLongBodyBytes = 200'000;  // five times what a simulator usually sends

std::uint32_t step(std::uint32_t& state) {
    state = state * 1'664'525U + 1'013'904'223U;
    return state >> 8U;
}

}  // namespace

std::vector<std::string> RoughLine::cut(const std::vector<std::string>& packets, std::uint32_t protocol) {
    auto stream = std::exchange(kept_, {});
    for (const auto& packet : packets) {
        stream += strangePacket(protocol);
        stream += packet;
    }
    if (!packets.empty()) {
        const auto keep = std::min<std::size_t>(stream.size(), next(20));
        kept_ = stream.substr(stream.size() - keep);
        stream.resize(stream.size() - keep);
    }
    std::vector<std::string> chunks;
    for (std::size_t start = 0; start < stream.size();) {
        const std::size_t longest = stream.size() > 20'000 ? 30'000 : 90;
        const auto size = std::min<std::size_t>(stream.size() - start, 1 + next(static_cast<std::uint32_t>(longest)));
        chunks.push_back(stream.substr(start, size));
        start += size;
    }
    return chunks;
}

std::uint32_t RoughLine::next(std::uint32_t below) {
    return step(state_) % below;
}

std::string RoughLine::strangePacket(std::uint32_t protocol) {
    strange_++;
    if (strange_ == 5) return anyAnswer(protocol, kLongId, std::string(kLongBodyBytes, '\x5A'));
    switch (next(4)) {
        case 0: {
            const auto id = 40 + next(kLongId - 40);  // first: compilers evaluate arguments in different orders
            return anyAnswer(protocol, id, std::string(next(64), '\x08'));
        }
        case 1:
            return anyAnswer(protocol, 0, "");
        case 2:
            return anyAnswer(protocol, 0xFFFFFF00U + next(255), "\x0C");
        default:
            return "";
    }
}

std::string noise(std::uint32_t& state, std::size_t bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes; i++) text += static_cast<char>(step(state) & 0xFFU);
    for (std::size_t i = 0; i < std::min<std::size_t>(bytes, 4); i++) text[i] = static_cast<char>(0xFF - i);
    return text;
}

}  // namespace standin
