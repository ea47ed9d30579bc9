#include "worker/xplane/packets.h"
#include <algorithm>
#include <bit>
#include <cstddef>

namespace xplane {

namespace {

constexpr std::size_t kTagBytes = 5;  // four letters and one more byte
constexpr std::size_t kRequestNameBytes = 400;
constexpr std::size_t kWriteNameBytes = 500;
constexpr std::size_t kValueBytes = 8;  // index and value

// Where things are in the beacon.
constexpr std::size_t kBeaconMajor = 5;
constexpr std::size_t kBeaconProgram = 7;
constexpr std::size_t kBeaconVersion = 11;
constexpr std::size_t kBeaconRole = 15;
constexpr std::size_t kBeaconPort = 19;
constexpr std::size_t kBeaconComputer = 21;
constexpr std::uint8_t kKnownMajor = 1;  // later minor versions only add to it
constexpr std::size_t kMaxComputerBytes = 255;

bool hasTag(ByteView datagram, std::string_view tag) {
    return datagram.size() >= kTagBytes && std::equal(tag.begin(), tag.end(), datagram.begin());
}

std::uint32_t numberAt(ByteView bytes, std::size_t offset) {
    return bytes[offset] | static_cast<std::uint32_t>(bytes[offset + 1]) << 8U |
           static_cast<std::uint32_t>(bytes[offset + 2]) << 16U | static_cast<std::uint32_t>(bytes[offset + 3]) << 24U;
}

void addNumber(Bytes& bytes, std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

Bytes beginDatagram(std::string_view tag) {
    Bytes bytes(tag.begin(), tag.end());
    bytes.push_back(0);
    return bytes;
}

// Cut so that a zero always ends it.
void addName(Bytes& bytes, std::string_view name, std::size_t width) {
    const auto end = bytes.size() + width;
    const auto kept = name.substr(0, width - 1);
    bytes.insert(bytes.end(), kept.begin(), kept.end());
    bytes.resize(end);
}

std::string textFrom(ByteView bytes) {
    std::string text;
    for (const auto byte : bytes.first(std::min(bytes.size(), kMaxComputerBytes))) {
        if (byte == 0) break;
        text += byte >= 0x20 && byte < 0x7f ? static_cast<char>(byte) : '?';
    }
    return text;
}

}  // namespace

std::optional<Beacon> decodeBeacon(ByteView datagram) {
    if (!hasTag(datagram, std::string_view("BECN\0", kTagBytes)) || datagram.size() < kBeaconComputer) {
        return std::nullopt;
    }
    Beacon beacon;
    beacon.program = static_cast<std::int32_t>(numberAt(datagram, kBeaconProgram));
    beacon.version = static_cast<std::int32_t>(numberAt(datagram, kBeaconVersion));
    beacon.role = numberAt(datagram, kBeaconRole);
    beacon.port = static_cast<std::uint16_t>(datagram[kBeaconPort] | datagram[kBeaconPort + 1] << 8);
    beacon.computer = textFrom(datagram.subspan(kBeaconComputer));
    if (datagram[kBeaconMajor] != kKnownMajor || beacon.port == 0) return std::nullopt;
    return beacon;
}

// 122015 is 12.2.0, 115501 is 11.55: with version 12 the number after the first dot went from two digits to one.
std::string versionText(std::int32_t version) {
    constexpr std::int32_t kMajor = 10'000;
    constexpr std::int32_t kThreeNumbers = 120'000;
    constexpr std::int32_t kLeast = 100'000;
    constexpr std::int32_t kMost = 1'000'000;
    std::string name = "X-Plane";
    if (version < kLeast || version >= kMost) return name;
    const auto digit = [&](std::int32_t unit) { return std::to_string(version / unit % 10); };
    const auto major = name + ' ' + std::to_string(version / kMajor) + '.' + digit(1000);
    return version >= kThreeNumbers ? major + '.' + digit(100) : major + digit(100);
}

std::optional<Values> decodeValues(ByteView datagram) {
    if (!hasTag(datagram, "RREF")) return std::nullopt;  // the fifth byte differs between versions
    Values values;
    auto rest = datagram.subspan(kTagBytes);
    values.whole.reserve(rest.size() / kValueBytes);
    for (; rest.size() >= kValueBytes; rest = rest.subspan(kValueBytes)) {
        values.whole.push_back(
            {static_cast<std::int32_t>(numberAt(rest, 0)), std::bit_cast<float>(numberAt(rest, sizeof(float)))});
    }
    values.endsInHalf = !rest.empty();
    return values;
}

Bytes encodeRequest(std::int32_t timesPerSecond, std::int32_t index, std::string_view name) {
    auto bytes = beginDatagram("RREF");
    addNumber(bytes, static_cast<std::uint32_t>(timesPerSecond));
    addNumber(bytes, static_cast<std::uint32_t>(index));
    addName(bytes, name, kRequestNameBytes);
    return bytes;
}

Bytes encodeWrite(float value, std::string_view name) {
    auto bytes = beginDatagram("DREF");
    addNumber(bytes, std::bit_cast<std::uint32_t>(value));
    addName(bytes, name, kWriteNameBytes);
    return bytes;
}

Bytes encodeCommand(std::string_view name) {
    auto bytes = beginDatagram("CMND");
    bytes.insert(bytes.end(), name.begin(), name.end());
    bytes.push_back(0);
    return bytes;
}

}  // namespace xplane
