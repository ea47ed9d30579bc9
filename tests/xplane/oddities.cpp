#include "tests/xplane/oddities.h"
#include <limits>

namespace xstandin {

namespace {

constexpr std::int32_t kForeignIndex = 700'000;
constexpr std::size_t kLongBytes = 60'000;  // nearly the longest that UDP takes

std::string answerOf(const std::vector<Reading>& readings, char fifthByte) {
    return answersOf(readings, fifthByte).front();
}

std::vector<Reading> withValue(std::vector<Reading> readings, float value) {
    for (auto& reading : readings) reading.value = value;
    return readings;
}

std::string oddBytes(Oddity oddity, const std::vector<Reading>& readings, char fifthByte) {
    const std::string whole = answerOf(readings, fifthByte);
    const std::string foreign = answerOf({{kForeignIndex, 127'000.0f}, {-1, 1.0f}}, fifthByte);
    switch (oddity) {
        case Oddity::kNan:
            return answerOf(withValue(readings, std::numeric_limits<float>::quiet_NaN()), fifthByte);
        case Oddity::kInfinity:
            return answerOf(withValue(readings, std::numeric_limits<float>::infinity()), fifthByte);
        case Oddity::kHalf:
            return whole.substr(0, whole.size() - 3);
        case Oddity::kForeign:
            return foreign;
        case Oddity::kStranger:
            return answerOf(withValue(readings, 127'000.0f), fifthByte);
        case Oddity::kNoise:
            return "\x7F\x45\x4C\x46 is not what was asked for";
        case Oddity::kEmpty:
            return {};
        case Oddity::kLong: {
            std::string text = foreign;
            while (text.size() < kLongBytes) text += foreign.substr(5);
            return text;
        }
    }
    return {};
}

}  // namespace

Datagram oddAnswer(Oddity oddity, const Endpoint& peer, const std::vector<Reading>& readings, char fifthByte) {
    const auto way = oddity == Oddity::kStranger ? Way::kStranger : Way::kAnswer;
    return {way, peer, oddBytes(oddity, readings, fifthByte)};
}

std::vector<std::string> oddBeacons(const Beacon& beacon) {
    const std::string whole = beaconDatagram(beacon);
    Beacon maker = beacon;
    maker.program = 2;
    Beacon portless = beacon;
    portless.port = 0;
    return {"",
            whole.substr(0, 4),
            whole.substr(0, 20),
            "BACN" + whole.substr(4),
            beaconDatagram(maker),
            beaconDatagram(portless)};
}

}  // namespace xstandin
