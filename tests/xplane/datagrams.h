// datagrams.h - what clients send to X-Plane, and what it sends: answers to whoever asked, the beacon to everybody.
// [any thread] Values; nothing here locks.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace xstandin {

enum class RequestKind : std::uint8_t {
    kStrange,  // what X-Plane passes over: another head, another length, a name that nothing ends
    kRead,     // RREF
    kWrite,    // DREF
    kCommand,  // CMND
};

struct Request {
    RequestKind kind = RequestKind::kStrange;
    std::int32_t perSecond = 0;  // of kRead; 0 stops it
    std::int32_t index = 0;      // of kRead: the client's own number for it
    float value = 0.0f;          // of kWrite
    std::string name;
};

Request readRequest(std::string_view datagram);

struct Reading {
    std::int32_t index = 0;
    float value = 0.0f;
};

// As many datagrams as it takes. fifthByte follows "RREF": ',' or, in version 10, 'O'.
std::vector<std::string> answersOf(const std::vector<Reading>& readings, char fifthByte);

struct Beacon {
    std::uint8_t major = 1;
    std::uint8_t minor = 2;
    std::int32_t program = 1;       // 1 X-Plane, 2 Plane Maker
    std::int32_t version = 122015;  // 12.2.0
    std::int32_t role = 1;          // 1 master, 2 external visual, 3 instructor
    std::uint16_t port = 49'000;    // that it listens on
    std::string computer = "simpc";
};

std::string beaconDatagram(const Beacon& beacon);

}  // namespace xstandin
