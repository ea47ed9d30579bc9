// visitor.h - a client of the stand-in simulator for its tests: makes requests byte by byte and keeps what comes back.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>
#include "tests/simulator/simulator.h"
#include "tests/simulator/wire.h"

// "28 01 00 00" as bytes. ".." and other words are skipped.
std::string bytesOfHex(std::string_view hex);

struct Received {
    std::uint32_t id = 0;
    std::string packet;
    std::uint32_t u32(std::size_t offset) const { return standin::u32At(packet, offset); }
    double f64(std::size_t offset) const;
};

class Visitor {
  public:
    // Connects at once. The clock belongs to the tests; fly() advances it.
    Visitor(standin::Simulator& simulator, std::uint64_t& nowMs);

    // Whole packets; each returns its send id.
    std::uint32_t send(std::uint32_t opcode, std::string_view body);
    std::uint32_t open(std::uint32_t version = 5);
    std::uint32_t mapEvent(std::uint32_t id, std::string_view name);
    std::uint32_t transmit(std::uint32_t id, std::uint32_t data);
    std::uint32_t define(std::uint32_t id, std::string_view name, std::string_view units, std::uint32_t type = 4,
                         float epsilon = 0.0f, std::uint32_t datumId = 0xFFFFFFFFU);
    std::uint32_t request(const standin::DataRequest& request);
    std::uint32_t subscribe(std::uint32_t id, std::string_view name);
    void sendBytes(std::string_view bytes);  // anything

    // Time passes in steps of 10 ms.
    void fly(std::uint64_t ms);
    void collect();

    std::vector<Received> packets(std::uint32_t id) const;  // of that kind, so far
    std::size_t count(std::uint32_t id) const { return packets(id).size(); }
    // The code of the only exception so far, if it is about the packet with that send id; otherwise 0.
    std::uint32_t exceptionFor(std::uint32_t sendId) const;
    void forget() { received_.clear(); }

    std::vector<std::string> chunks;  // as written, all of them
    bool isClosed = false;
    const int client;

  private:
    void cut();

    standin::Simulator& simulator_;
    std::uint64_t& nowMs_;
    std::uint32_t sendId_ = 0;
    std::string stream_;
    std::vector<Received> received_;
};
