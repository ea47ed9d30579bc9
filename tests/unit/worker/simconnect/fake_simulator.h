// fake_simulator.h - the other end of a session, by hand: a transport that records what it is given, and the packets
// with which a simulator would answer. Knows the packets only by their offsets, not through the code under test.
#pragma once
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>
#include "worker/simconnect/transport.h"

using FakeBytes = std::vector<std::uint8_t>;

class FakeTransport : public simconnect::Transport {
  public:
    void connect() override {
        connects++;
        sent.clear();
        incoming.clear();
        state = onConnect;
    }
    void close() override { state = simconnect::TransportState::kClosed; }
    simconnect::TransportState poll() override { return state; }
    std::size_t receive(std::span<std::uint8_t> into) override {
        const auto count = std::min({into.size(), incoming.size(), mostAtOnce});
        std::copy_n(incoming.begin(), count, into.begin());
        incoming.erase(incoming.begin(), incoming.begin() + static_cast<std::ptrdiff_t>(count));
        return count;
    }
    bool send(std::span<const std::uint8_t> packet) override {
        if (state != simconnect::TransportState::kOpen || refusesSends) return false;
        sent.emplace_back(packet.begin(), packet.end());
        return true;
    }
    std::string problem() const override { return reason; }
    std::string silence() const override { return "no answer from the transport"; }

    simconnect::TransportState state = simconnect::TransportState::kClosed;
    simconnect::TransportState onConnect = simconnect::TransportState::kOpen;
    std::string reason;
    int connects = 0;
    bool refusesSends = false;
    std::size_t mostAtOnce = 1'000'000;
    std::vector<FakeBytes> sent;  // on this connection
    FakeBytes incoming;
};

inline std::uint32_t u32At(const FakeBytes& bytes, std::size_t offset) {
    return bytes[offset] | bytes[offset + 1] << 8u | bytes[offset + 2] << 16u |
           static_cast<std::uint32_t>(bytes[offset + 3]) << 24u;
}

inline std::string textIn(const FakeBytes& bytes, std::size_t offset) {
    return reinterpret_cast<const char*>(bytes.data()) + offset;
}

// A received packet from its id on; the size is filled in at the front.
class FakePacket {
  public:
    explicit FakePacket(std::uint32_t id) { u32(0).u32(6).u32(id); }
    FakePacket& u32(std::uint32_t value) {
        for (int shift = 0; shift < 32; shift += 8) bytes_.push_back(static_cast<std::uint8_t>(value >> shift));
        return *this;
    }
    FakePacket& f64(double value) {
        const auto bits = std::bit_cast<std::uint64_t>(value);
        return u32(static_cast<std::uint32_t>(bits)).u32(static_cast<std::uint32_t>(bits >> 32));
    }
    FakePacket& text(std::string_view text, std::size_t width) {
        const auto end = bytes_.size() + width;
        bytes_.insert(bytes_.end(), text.begin(), text.end());
        bytes_.resize(end);
        return *this;
    }
    FakeBytes bytes() const {
        auto whole = bytes_;
        for (std::size_t i = 0; i < 4; i++) whole[i] = static_cast<std::uint8_t>(bytes_.size() >> (8 * i));
        return whole;
    }

  private:
    FakeBytes bytes_;
};

// Answers over a FakeTransport; finds the ids that the client has chosen in what was sent.
class FakeSimulator {
  public:
    explicit FakeSimulator(FakeTransport& transport) : transport_(transport) {}

    static constexpr std::uint32_t kVariable = 0x0C, kMap = 0x04, kKeyEvent = 0x05, kRequest = 0x0E, kSubscribe = 0x17,
                                   kState = 0x35;

    void say(const FakePacket& packet) { say(packet.bytes()); }
    void say(const FakeBytes& bytes) {
        transport_.incoming.insert(transport_.incoming.end(), bytes.begin(), bytes.end());
    }
    void open() {
        FakePacket packet(2);
        packet.text("KittyHawk", 256).u32(11).u32(0).u32(282174).u32(999).u32(11).u32(0).u32(62651).u32(3);
        say(packet.u32(0).u32(0));
    }
    void exception(std::uint32_t code, std::uint32_t sendId) { say(FakePacket(1).u32(code).u32(sendId).u32(1)); }
    void quit() { say(FakePacket(3)); }
    void simState(std::uint32_t running) {
        say(FakePacket(15).u32(u32At(lastOf(kState, "Sim"), 16)).u32(running).u32(0).text("", 260));
    }
    void simEvent(std::uint32_t running) {
        say(FakePacket(4).u32(0xFFFFFFFF).u32(u32At(lastOf(kSubscribe, "Sim"), 16)).u32(running));
    }
    void loadAircraft(const std::string& file) {
        const auto id = u32At(lastOf(kSubscribe, "AircraftLoaded"), 16);
        say(FakePacket(6).u32(0xFFFFFFFF).u32(id).u32(0).text(file, 260).u32(0));
    }
    // As an answer to the latest request for changes of the variable.
    void tell(const std::string& variable, double value) { sayData(changeRequestOf(variable), variable, value); }
    void sayData(std::uint32_t requestId, const std::string& variable, double value) {
        const auto& definition = lastOf(kVariable, variable);
        FakePacket packet(8);
        packet.u32(requestId).u32(0).u32(u32At(definition, 16)).u32(0).u32(1).u32(1).u32(1);
        if (u32At(definition, 532) == 4) packet.f64(value);
        if (u32At(definition, 532) == 1) packet.u32(static_cast<std::uint32_t>(static_cast<std::int32_t>(value)));
        say(packet);
    }
    std::uint32_t changeRequestOf(const std::string& variable) const {
        const auto define = u32At(lastOf(kVariable, variable), 16);
        std::uint32_t id = 0;
        for (const auto& packet : all(kRequest)) {
            if (u32At(packet, 20) == define && u32At(packet, 28) == 2 && u32At(packet, 32) == 1) id = u32At(packet, 16);
        }
        return id;
    }

    // All packets of that kind sent on this connection.
    std::vector<FakeBytes> all(std::uint32_t opcode) const {
        std::vector<FakeBytes> found;
        for (const auto& packet : transport_.sent) {
            if (u32At(packet, 8) == (0xF0000000u | opcode)) found.push_back(packet);
        }
        return found;
    }
    // The last one with that name in it; all zeros if there is none.
    FakeBytes lastOf(std::uint32_t opcode, const std::string& name) const {
        FakeBytes last(544);
        for (const auto& packet : all(opcode)) {
            if (textIn(packet, 20) == name) last = packet;
        }
        return last;
    }
    std::uint32_t sendIdOf(std::uint32_t opcode, const std::string& name) const {
        return u32At(lastOf(opcode, name), 12);
    }
    // Key events sent on this connection as "NAME value".
    std::vector<std::string> keyEvents() const {
        std::map<std::uint32_t, std::string> names;
        for (const auto& packet : all(kMap)) names[u32At(packet, 16)] = textIn(packet, 20);
        std::vector<std::string> events;
        for (const auto& packet : all(kKeyEvent)) {
            events.push_back(names[u32At(packet, 20)] + ' ' + std::to_string(u32At(packet, 24)));
        }
        return events;
    }

  private:
    FakeTransport& transport_;
};
