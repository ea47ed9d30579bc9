// fake_xplane.h - the other end of the link, by hand: datagrams that are recorded and handed out, and an X-Plane that
// answers. Knows the datagrams only by their offsets, not through the code under test.
#pragma once
#include <algorithm>
#include <bit>
#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>
#include "worker/xplane/datagrams.h"

using FakeBytes = std::vector<std::uint8_t>;

inline constexpr std::uint32_t kHere = 0xC0A80105;       // 192.168.1.5, this computer
inline constexpr std::uint32_t kElsewhere = 0xC0A80120;  // 192.168.1.32
inline constexpr std::uint32_t kLoopback = 0x7F000001;

class FakeDatagrams : public xplane::Datagrams {
  public:
    bool listen() override {
        listens++;
        return listenProblem == 0;
    }
    std::uint32_t problem() const override { return listenProblem; }
    std::optional<xplane::Received> receiveBeacon(std::span<std::uint8_t> into) override {
        beaconLooks++;
        return taken(listens > 0 && listenProblem == 0 ? beacons : nothing_, into);
    }
    std::optional<xplane::Received> receiveAnswer(std::span<std::uint8_t> into) override {
        return taken(isOpen ? answers : nothing_, into);
    }
    bool send(const xplane::Endpoint& to, std::span<const std::uint8_t> datagram) override {
        if (refusesSends) return false;
        isOpen = true;
        sent.emplace_back(to, FakeBytes(datagram.begin(), datagram.end()));
        return true;
    }
    void closeOurs() override {
        isOpen = false;
        answers.clear();
    }
    bool isHere(std::uint32_t address) override { return address == kHere || address == kLoopback; }
    void* wakeHandle() const override { return wakes; }

    using Arrived = std::pair<xplane::Endpoint, FakeBytes>;  // from, or to
    std::deque<Arrived> beacons, answers;
    std::vector<Arrived> sent;
    int listens = 0;
    int beaconLooks = 0;
    std::uint32_t listenProblem = 0;
    bool isOpen = false;  // our socket
    bool refusesSends = false;
    void* wakes = nullptr;

  private:
    static std::optional<xplane::Received> taken(std::deque<Arrived>& from, std::span<std::uint8_t> into) {
        if (from.empty()) return std::nullopt;
        const auto [sender, bytes] = from.front();
        from.pop_front();
        const auto count = std::min(bytes.size(), into.size());
        std::copy_n(bytes.begin(), count, into.begin());
        return xplane::Received{count, sender};
    }
    std::deque<Arrived> nothing_;
};

inline void addU32(FakeBytes& bytes, std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

inline std::uint32_t u32Of(const FakeBytes& bytes, std::size_t offset) {
    std::uint32_t value = 0;
    for (std::size_t i = 4; i > 0; i--) value = value << 8U | bytes.at(offset + i - 1);
    return value;
}

inline std::string textOf(const FakeBytes& bytes, std::size_t offset) {
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(std::min(offset, bytes.size()));
    return {begin, std::find(begin, bytes.end(), 0)};
}

struct FakeBeacon {
    int version = 122015;
    std::uint16_t port = 49000;
    std::uint32_t role = 1;
    std::uint32_t program = 1;
    std::uint8_t major = 1;
    std::uint8_t minor = 2;

    FakeBytes bytes(const std::string& computer = "cockpit") const {
        FakeBytes made = {'B', 'E', 'C', 'N', 0, major, minor};
        addU32(made, program);
        addU32(made, static_cast<std::uint32_t>(version));
        addU32(made, role);
        made.push_back(static_cast<std::uint8_t>(port));
        made.push_back(static_cast<std::uint8_t>(port >> 8));
        made.insert(made.end(), computer.begin(), computer.end());
        made.push_back(0);
        return made;
    }
};

// One X-Plane. It answers what it is asked by answer(), as often as the test calls that.
class FakeXPlane {
  public:
    explicit FakeXPlane(FakeDatagrams& datagrams, xplane::Endpoint place = {kHere, 49000})
        : at(place), datagrams_(datagrams) {}

    void say(const FakeBeacon& said) { datagrams_.beacons.push_back({{at.address, 50123}, said.bytes()}); }
    void sayBeacon() {
        auto own = beacon;
        own.port = at.port;
        say(own);
    }

    // Takes in what was sent to it since the last call.
    void listen() {
        for (; taken_ < datagrams_.sent.size(); taken_++) {
            const auto& [to, bytes] = datagrams_.sent[taken_];
            if (!(to == at)) continue;
            const auto tag = textOf(bytes, 0);
            if (tag == "RREF") onRequest(bytes);
            if (tag == "DREF") writes.push_back(textOf(bytes, 9) + ' ' + std::to_string(floatAt(bytes, 5)));
            if (tag == "CMND") writes.push_back(textOf(bytes, 5));
        }
    }
    // One datagram with the present value of all that is asked for.
    void answer() {
        listen();
        FakeBytes bytes = {'R', 'R', 'E', 'F', ','};
        for (const auto& [index, name] : asked) {
            if (cockpit.count(name) == 0) continue;
            addU32(bytes, static_cast<std::uint32_t>(index));
            addU32(bytes, std::bit_cast<std::uint32_t>(cockpit[name]));
        }
        if (!asked.empty()) send(bytes);
    }
    void send(const FakeBytes& bytes) { datagrams_.answers.push_back({answersFrom.value_or(at), bytes}); }
    // An answer of one value.
    void tell(std::int32_t index, float value) {
        FakeBytes bytes = {'R', 'R', 'E', 'F', ','};
        addU32(bytes, static_cast<std::uint32_t>(index));
        addU32(bytes, std::bit_cast<std::uint32_t>(value));
        send(bytes);
    }
    std::int32_t indexOf(const std::string& name) {
        listen();
        for (const auto& [index, asking] : asked) {
            if (asking == name) return index;
        }
        return -1;
    }
    // It ends and begins again: knows nothing of what it was asked.
    void restart() {
        listen();
        asked.clear();
    }

    static float floatAt(const FakeBytes& bytes, std::size_t offset) {
        return std::bit_cast<float>(u32Of(bytes, offset));
    }

    xplane::Endpoint at;
    std::optional<xplane::Endpoint> answersFrom;  // none: from where it listens
    FakeBeacon beacon;
    std::map<std::int32_t, std::string> asked;  // name by index
    std::map<std::string, int> rates;           // of each name ever asked for, the latest
    std::map<std::string, int> requests;        // how often each name was asked for
    std::vector<std::string> writes;            // "NAME value", or a command
    std::map<std::string, float> cockpit;

  private:
    void onRequest(const FakeBytes& bytes) {
        const auto rate = static_cast<int>(u32Of(bytes, 5));
        const auto index = static_cast<std::int32_t>(u32Of(bytes, 9));
        const auto name = textOf(bytes, 13);
        rates[name] = rate;
        if (rate == 0) {
            asked.erase(index);
            return;
        }
        requests[name]++;
        asked[index] = name;
    }

    FakeDatagrams& datagrams_;
    std::size_t taken_ = 0;  // of what was sent
};
