// xplane_packets_fuzz.cpp - any bytes as what comes over the network beside X-Plane or in its place: beacons, answers
// and neither, from the datagram up to the radios' snapshot.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>
#include "exchange/frequency_grid.h"
#include "worker/xplane/xplane_link.h"

namespace {

constexpr std::uint32_t kHere = 0xC0A80105;

// The input is one byte, odd where the pilot has named X-Plane's computer, and a row of datagrams, one a pass, each
// behind two bytes: how long it is, and what it is: bit 0 for the beacon's socket, not ours; bit 1 from another
// computer; the others how long until the next, in 50 ms.
class FuzzDatagrams : public xplane::Datagrams {
  public:
    explicit FuzzDatagrams(xplane::ByteView bytes) : rest_(bytes) {}
    bool listen() override { return true; }
    std::uint32_t problem() const override { return 0; }
    std::optional<xplane::Received> receiveBeacon(std::span<std::uint8_t> into) override { return next(into, 1); }
    std::optional<xplane::Received> receiveAnswer(std::span<std::uint8_t> into) override { return next(into, 0); }
    bool send(const xplane::Endpoint&, std::span<const std::uint8_t> datagram) override {
        const auto bytes = datagram.size();
        if (bytes != 413 && bytes != 509 && datagram[0] != 'C') std::abort();
        return true;
    }
    void closeOurs() override {}
    bool isHere(std::uint32_t address) override { return address == kHere; }

    // Lets the next datagram arrive; how long until the one behind it, nothing after the last.
    std::optional<std::uint64_t> arrive() {
        if (rest_.size() < 2) return std::nullopt;
        kind_ = rest_[1];
        arrived_ = rest_.subspan(2, std::min<std::size_t>(rest_[0], rest_.size() - 2));
        rest_ = rest_.subspan(2 + arrived_->size());
        return 20 + (kind_ >> 2U) * 50U;
    }

  private:
    std::optional<xplane::Received> next(std::span<std::uint8_t> into, unsigned socket) {
        if (!arrived_ || (kind_ & 1U) != socket) return std::nullopt;
        const auto count = std::min(arrived_->size(), into.size());
        std::copy_n(arrived_->begin(), count, into.begin());
        arrived_.reset();
        return xplane::Received{count, {kHere + (kind_ >> 1U & 1U), 49000}};
    }

    xplane::ByteView rest_;
    std::optional<xplane::ByteView> arrived_;
    unsigned kind_ = 0;
};

bool isSound(const RadioReading& radio) {
    const auto isChannel = [](std::int32_t khz) {
        return khz == 0 || (khz >= kBandMinKHz && khz <= kBandMaxKHz && isOnGrid(khz, kSpacing833));
    };
    return isChannel(radio.active) && isChannel(radio.standby) &&
           (radio.volume == -1.0f || (radio.volume >= 0.0f && radio.volume <= 1.0f));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    auto owned = std::make_unique<FuzzDatagrams>(xplane::ByteView(data, size).subspan(1));
    auto& datagrams = *owned;
    const auto address = data[0] & 1U ? std::optional(HostPort{"192.168.1.5", 49000}) : std::nullopt;
    xplane::XPlaneLink link(std::move(owned), address);
    std::uint64_t nowMs = 1000;
    for (int pass = 0; pass < 400; pass++) {
        const auto waitMs = datagrams.arrive();
        if (!waitMs) break;
        link.poll(nowMs);
        nowMs += *waitMs;
        const auto& sim = link.snapshot();
        for (const auto& radio : sim.radios) {
            if (!isSound(radio)) std::abort();
            if (!sim.ok && !(radio == RadioReading())) std::abort();
        }
        if (sim.status.empty() || sim.status.size() > 44) std::abort();
        const RadioWrite write = {static_cast<std::size_t>(pass & 1), static_cast<RadioSlot>(pass / 2 % 4),
                                  pass / 2 % 4 == kSlotVolume ? 0.5 : 118'005.0};
        if (link.write(write, nowMs) && pass % 3 == 0) link.noteReadback(write, false);
        link.takeNotes();
    }
    return 0;
}
