#include "tests/xplane/datagrams.h"
#include "tests/xplane/fields.h"

namespace xstandin {

namespace {

constexpr std::size_t kHeadBytes = 5;  // four letters and a zero
constexpr std::size_t kReadBytes = 413;
constexpr std::size_t kReadNameAt = 13;
constexpr std::size_t kWriteBytes = 509;
constexpr std::size_t kWriteNameAt = 9;
constexpr std::size_t kPairBytes = 8;
constexpr std::size_t kMostPairs = 180;  // in a datagram that no network cuts: 1445 bytes

// Up to the zero that ends it. False without one.
bool readName(std::string_view field, std::string& name) {
    const auto end = field.find('\0');
    if (end == std::string_view::npos || end == 0) return false;
    name = field.substr(0, end);
    return true;
}

bool hasHead(std::string_view datagram, std::string_view letters) {
    return datagram.size() > kHeadBytes && datagram.starts_with(letters) && datagram[4] == '\0';
}

}  // namespace

Request readRequest(std::string_view datagram) {
    Request request;
    if (hasHead(datagram, "RREF") && datagram.size() == kReadBytes) {
        request.perSecond = i32At(datagram, 5);
        request.index = i32At(datagram, 9);
        if (readName(datagram.substr(kReadNameAt), request.name)) request.kind = RequestKind::kRead;
    } else if (hasHead(datagram, "DREF") && datagram.size() == kWriteBytes) {
        request.value = f32At(datagram, 5);
        if (readName(datagram.substr(kWriteNameAt), request.name)) request.kind = RequestKind::kWrite;
    } else if (hasHead(datagram, "CMND")) {
        if (readName(datagram.substr(kHeadBytes), request.name)) request.kind = RequestKind::kCommand;
    }
    return request;
}

std::vector<std::string> answersOf(const std::vector<Reading>& readings, char fifthByte) {
    std::vector<std::string> datagrams;
    for (std::size_t i = 0; i < readings.size(); i++) {
        if (i % kMostPairs == 0) datagrams.push_back(std::string("RREF") + fifthByte);
        datagrams.back().reserve(kHeadBytes + kMostPairs * kPairBytes);
        addI32(datagrams.back(), readings[i].index);
        addF32(datagrams.back(), readings[i].value);
    }
    return datagrams;
}

std::string beaconDatagram(const Beacon& beacon) {
    std::string datagram("BECN\0", kHeadBytes);
    datagram += static_cast<char>(beacon.major);
    datagram += static_cast<char>(beacon.minor);
    addI32(datagram, beacon.program);
    addI32(datagram, beacon.version);
    addI32(datagram, beacon.role);
    addU16(datagram, beacon.port);
    datagram += beacon.computer;
    datagram += '\0';
    return datagram;
}

}  // namespace xstandin
