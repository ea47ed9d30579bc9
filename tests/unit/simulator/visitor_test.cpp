#include "tests/unit/simulator/visitor.h"
#include <gtest/gtest.h>
#include <bit>
#include <charconv>

using namespace standin;

std::string bytesOfHex(std::string_view hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i++) {
        unsigned value = 0;
        const auto [stop, error] = std::from_chars(hex.data() + i, hex.data() + i + 2, value, 16);
        if (error != std::errc{} || stop != hex.data() + i + 2) continue;
        bytes += static_cast<char>(value);
        i++;
    }
    return bytes;
}

double Received::f64(std::size_t offset) const {
    return std::bit_cast<double>(std::uint64_t{u32(offset + 4)} << 32U | u32(offset));
}

Visitor::Visitor(Simulator& simulator, std::uint64_t& nowMs)
    : client(simulator.connect(nowMs)), simulator_(simulator), nowMs_(nowMs) {}

std::uint32_t Visitor::send(std::uint32_t opcode, std::string_view body) {
    std::string packet;
    putU32(packet, static_cast<std::uint32_t>(16 + body.size()));
    putU32(packet, 5);
    putU32(packet, 0xF0000000U | opcode);
    putU32(packet, ++sendId_);
    sendBytes(packet += body);
    return sendId_;
}

std::uint32_t Visitor::open(std::uint32_t version) {
    std::string packet;
    putU32(packet, 296);
    putU32(packet, version);
    putU32(packet, 0xF0000001U);
    putU32(packet, ++sendId_);
    putText(packet, "Visitor", 256);
    packet += bytesOfHex("00 00 00 00  00 48 4b 00  0b 00 00 00 00 00 00 00  bb f4 00 00 03 00 00 00");
    sendBytes(packet);
    return sendId_;
}

std::uint32_t Visitor::mapEvent(std::uint32_t id, std::string_view name) {
    std::string body;
    putU32(body, id);
    putText(body, name, 256);
    return send(0x04, body);
}

std::uint32_t Visitor::transmit(std::uint32_t id, std::uint32_t data) {
    std::string body;
    for (const auto field : {0U, id, data, 1U, 0x10U}) putU32(body, field);
    return send(0x05, body);
}

std::uint32_t Visitor::define(std::uint32_t id, std::string_view name, std::string_view units, std::uint32_t type,
                              float epsilon, std::uint32_t datumId) {
    std::string body;
    putU32(body, id);
    putText(body, name, 256);
    putText(body, units, 256);
    putU32(body, type);
    putF32(body, epsilon);
    putU32(body, datumId);
    return send(0x0C, body);
}

std::uint32_t Visitor::request(const DataRequest& r) {
    std::string body;
    for (const auto field : {r.requestId, r.defineId, r.objectId, r.period, r.flags, r.origin, r.interval, r.limit}) {
        putU32(body, field);
    }
    return send(0x0E, body);
}

std::uint32_t Visitor::subscribe(std::uint32_t id, std::string_view name) {
    std::string body;
    putU32(body, id);
    putText(body, name, 256);
    return send(0x17, body);
}

void Visitor::sendBytes(std::string_view bytes) {
    simulator_.receive(client, bytes, nowMs_);
    collect();
}

void Visitor::fly(std::uint64_t ms) {
    for (const auto end = nowMs_ + ms; nowMs_ < end;) {
        nowMs_ += 10;
        simulator_.advance(nowMs_);
        collect();
    }
}

void Visitor::collect() {
    for (auto& output : simulator_.takeOutput()) {
        if (output.client != client) continue;
        stream_ += output.bytes;
        if (!output.bytes.empty()) chunks.push_back(std::move(output.bytes));
        isClosed = isClosed || output.isLast;
    }
    cut();
}

void Visitor::cut() {
    while (stream_.size() >= 12) {
        const auto size = u32At(stream_, 0);
        if (size < 12 || stream_.size() < size) return;
        received_.push_back({u32At(stream_, 8), stream_.substr(0, size)});
        stream_.erase(0, size);
    }
}

std::vector<Received> Visitor::packets(std::uint32_t id) const {
    std::vector<Received> found;
    for (const auto& packet : received_) {
        if (packet.id == id) found.push_back(packet);
    }
    return found;
}

std::uint32_t Visitor::exceptionFor(std::uint32_t sendId) const {
    const auto exceptions = packets(1);
    return exceptions.size() == 1 && exceptions[0].u32(16) == sendId ? exceptions[0].u32(12) : 0;
}

TEST(Visitor, ReadsHexAsItStandsInADump) {
    EXPECT_EQ(bytesOfHex("28 01 00 f0"), std::string("\x28\x01\x00\xF0", 4));
    EXPECT_EQ(bytesOfHex(""), "");
}
